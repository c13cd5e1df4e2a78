# SPDX-License-Identifier: Apache-2.0
# Labels of disks make names with backslashes, which CPack takes for slashes: such a name leaves its list, and a pattern
# that the file has comes in its place.
execute_process(
  COMMAND find ${CPACK_TEMPORARY_DIRECTORY}/sim -name "*\\\\*" -printf "/%P\\n"
  OUTPUT_VARIABLE names
  OUTPUT_STRIP_TRAILING_WHITESPACE)
string(REPLACE "\\" "/" taken_for "${names}")
string(REPLACE "\n" ";" taken_for "${taken_for}")
list(APPEND CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION ${taken_for})
string(REPLACE "\\" "?" patterns "${names}")
string(REPLACE "\n" ";" patterns "${patterns}")
list(TRANSFORM patterns PREPEND "%attr(-,root,root) " OUTPUT_VARIABLE CPACK_RPM_SIM_USER_FILELIST)
