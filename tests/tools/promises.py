# SPDX-License-Identifier: Apache-2.0
"""What a schema promises, compared with what it promised before."""

# Words about the documents, and not of them.
FREE = {"$id", "$comment", "title", "description", "examples"}


def missing(old, new):
    return [word for word in old if word not in new]


def as_list(value):
    return value if isinstance(value, list) else [value]


def broken_keyword(word, old, new, path):
    if word in ("properties", "$defs"):
        for key in old:
            if key not in new:
                yield f"{path}.{key} was removed"
            else:
                yield from broken(old[key], new[key], f"{path}.{key}")
    elif word == "type":
        if set(as_list(old)) != set(as_list(new)):
            yield f"{path} was {old} and is {new}"
    elif word in ("required", "enum"):
        # Those that are there are in every document; and of words new ones may come.
        for one in missing(old, new):
            yield f"{path} no longer has {one!r} among {word}"
    elif isinstance(old, dict) and isinstance(new, dict):
        yield from broken(old, new, f"{path}/{word}")
    elif isinstance(old, list) and isinstance(new, list) and len(old) == len(new):
        for number, pair in enumerate(zip(old, new)):
            yield from broken(*pair, f"{path}/{word}/{number}")
    elif old != new:
        yield f"{path}: {word} was {old!r} and is {new!r}"


def broken(old, new, path=""):
    """A line for each promise of the old schema that the new one does not give; new keys break none."""
    if not isinstance(old, dict) or not isinstance(new, dict):
        if old != new:
            yield f"{path} was {old!r} and is {new!r}"
        return
    for word, value in old.items():
        if word in FREE:
            continue
        if word not in new:
            yield f"{path}: {word} is gone"
        else:
            yield from broken_keyword(word, value, new[word], path)


def nodes(schema):
    """All schemas within a schema, and itself."""
    if isinstance(schema, list):
        for one in schema:
            yield from nodes(one)
    if not isinstance(schema, dict):
        return
    yield schema
    for word, value in schema.items():
        inner = value.values() if word in ("properties", "$defs", "patternProperties") else [value]
        for one in inner:
            yield from nodes(one)


def is_of_objects(node):
    return "object" in as_list(node.get("type", [])) or "properties" in node
