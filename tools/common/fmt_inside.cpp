// SPDX-License-Identifier: Apache-2.0
// fmt, as a part of the programs: what its headers declare and its library would hold. Finding a shared C++
// runtime and fmt at every start takes longer than asking for the devices of a usual host does.
#include <fmt/format-inl.h>

#include <locale>

FMT_BEGIN_NAMESPACE
namespace detail
{
template void vformat_to(buffer<char> &, string_view, basic_format_args<FMT_BUFFER_CONTEXT(char)>,
                         locale_ref);
template auto thousands_sep_impl(locale_ref) -> thousands_sep_result<char>;
template auto decimal_point_impl(locale_ref) -> char;
} // namespace detail
FMT_END_NAMESPACE
