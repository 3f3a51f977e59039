# Fails when a library source includes a header by a relative path
# ("../dist/..."), which would step around the include root of its layer.
# Called at build time with FILES (a ;-list, passed with | between files)
# and STAMP, the file it writes when all is well.
string(REPLACE "|" ";" files "${FILES}")
set(found)
foreach(f ${files})
  file(STRINGS ${f} lines REGEX "^[ \t]*#[ \t]*include[ \t]*\"\\.\\.")
  foreach(line ${lines})
    list(APPEND found "${f}: ${line}")
  endforeach()
endforeach()
if(found)
  list(JOIN found "\n" text)
  message(FATAL_ERROR "include by a relative path, outside the layer's include root:\n${text}")
endif()
file(WRITE ${STAMP} "")
