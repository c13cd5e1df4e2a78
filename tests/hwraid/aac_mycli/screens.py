# SPDX-License-Identifier: Apache-2.0
"""What the console asks and answers, as service staff read it."""

HELLO = "stcli: Hello world!\n"
BYE = "Bye!\nstcli: Ok!\n"

MAIN_MENU = (
    "1 - Controller  2 - Disk  3 - Container  4 - Raid  5 - task"
    "  6 Server Management Interface -- GetIntemInfo 0 - Quit\n"
)
PROMPT = "Command>"
MAIN = MAIN_MENU + PROMPT
UNKNOWN = "Unknown command!\n" + PROMPT

CONTROLLER, DISK, CONTAINER, RAID, TASK, MANAGEMENT = "123456"
# By the choice that leads there: menu text with prompt, and what an unknown choice gets.
SUB_MENUS = {
    CONTROLLER: (
        "\nPlease select:1-get controller list, 2 -get name 0- quit\nCommand>Controller>",
        "Unknown controller command!\n",
    ),
    DISK: (
        "\nPlease select:1-get disk list, 2 -disk show defect \n"
        "\t3 -disk show space 4 -disk show partition 0- quit\nCommand>Disk>",
        "Unknown disk command!\n",
    ),
    CONTAINER: (
        "\nPlease select:1-get container list, 2-container delete 3-set failover \n"
        "                4-show failover 5 get container corresponding disk name \nCommand>Container>",
        "Unknown container command!\n",
    ),
    RAID: (
        "\nPlease select:1-create Raid 0, 2- create raid1 3-create raid10 4-create raid5 0- quit\nCommand>Raid>",
        "Unknown raid command!\n",
    ),
    TASK: (
        "\nPlease select:1-get task list, 2 -get container task 0- quit\nCommand>Task>",
        "Unknown task command!\n",
    ),
    MANAGEMENT: (
        "\nPlease select:-1- controller  -2- disk  -3- space -4- partition  -5- raid  \n"
        "\t-6- clear controller -7- clear disk -8- clear space -9- clear partition -a- clear raid -0- quit\n"
        "Command>HSA>",
        "Unknown hsa command!\n",
    ),
}

REPEAT = "\tRepeat input:"
INDEX = "Please input index you are searching(0-9):"
CHANNEL = "Please input Disk Channel(which defect are shown):"
DISK_ID = "Please input Disk ID(which defect are shown):"
LUN = "Please input Disk Lun(which defect are shown):"
ALWAYS = "Always init even if has data:(0/1):"
CONTAINER_ID = "Please input Container ID(which defect are shown):"
TASK_CONTAINER = "Please input containerID:"
LABEL = "Please input label:(letter, digital and _, no space...)"
QUICK = "Quick init:(0/1):"
SPACE = "Please input Disk 1 use space"
# Misspelt for RAID 0 alone.
ANOTHER_OF_RAID_0 = "Do you want to add abother disk?"
ANOTHER = "Do you want to add another disk?(0/1)"


def raid_disk(number):
    """The three prompts for the disk of that number."""
    return [f"Please input Disk{number} {what}(which defect are shown):" for what in ("Channel", "ID", "Lun")]


def numbers(*pairs):
    """The prompts for numbers, each with what is tried as its answer; only the last try is taken."""
    text = ""
    for prompt, *tries in pairs:
        text += prompt + "\n" + (REPEAT + "\n") * (len(tries) - 1)
    return text


def visit(sub_menu, *results):
    """Everything between the first prompt and the end, for a visit of one sub-menu that is left again."""
    menu = SUB_MENUS[sub_menu][0]
    return HELLO + MAIN + menu + "".join(result + menu for result in results) + MAIN + BYE
