# build_manual.cmake - pandoc over the expanded pages listed in OUT/pages.txt
# (name, man section, title, kind a line): OUT/html/NAME.html with the
# sidebar and the search, and OUT/man/manS/NAME.S with a NAME section.
file(STRINGS ${OUT}/pages.txt pages)
file(MAKE_DIRECTORY ${OUT}/html ${OUT}/man/man1 ${OUT}/man/man3 ${OUT}/man/man7)
file(COPY ${SOURCE}/assets/zorvstat.css ${SOURCE}/assets/search.js ${OUT}/search-index.js DESTINATION ${OUT}/html)
file(WRITE ${OUT}/after.html "</main>\n<script src=\"search-index.js\"></script>\n<script src=\"search.js\"></script>\n")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${ARGN}: ${err}")
  endif()
endfunction()

foreach(line ${pages})
  string(REPLACE "\t" ";" fields "${line}")
  list(GET fields 0 name)
  list(GET fields 1 section)
  list(GET fields 2 title)
  # The first heading becomes the page's title, above the contents.
  file(READ ${OUT}/md/${name}.md text)
  string(REGEX REPLACE "^(<!--[^\n]*-->\n)*# [^\n]*\n" "" text "${text}")
  file(WRITE ${OUT}/html/${name}.md "${text}")
  run(${PANDOC} -f markdown -t html5 -s --toc --toc-depth=2 -c zorvstat.css
      --metadata "title=${title}" --include-before-body ${OUT}/sidebar.html
      --include-after-body ${OUT}/after.html -o ${OUT}/html/${name}.html ${OUT}/html/${name}.md)
  file(REMOVE ${OUT}/html/${name}.md)
  # A man page opens with NAME, and its section heads are upper case.  The
  # introductory pages (section 7) carry the library's prefix, so that
  # "errors" or "threads" do not meet the system's own pages.
  set(man_name ${name})
  if(section STREQUAL "7" AND NOT name STREQUAL "libzorvstat")
    set(man_name zorvstat_${name})
  endif()
  string(FIND "${title}" ": " colon)
  if(colon GREATER -1)
    math(EXPR colon "${colon} + 2")
    string(SUBSTRING "${title}" ${colon} -1 summary)
  else()
    set(summary "${title}")
  endif()
  string(REGEX MATCHALL "\n## [^\n]*" heads "${text}")
  foreach(head ${heads})
    string(TOUPPER "${head}" upper)
    string(REPLACE "${head}" "${upper}" text "${text}")
  endforeach()
  file(WRITE ${OUT}/man/${name}.md "## NAME\n\n${man_name} - ${summary}\n\n${text}")
  run(${PANDOC} -f markdown -t man -s --shift-heading-level-by=-1
      --metadata "title=${man_name}" --metadata "section=${section}"
      --metadata "header=libzorvstat manual" --metadata "footer=libzorvstat ${VERSION}"
      -o ${OUT}/man/man${section}/${man_name}.${section} ${OUT}/man/${name}.md)
  file(REMOVE ${OUT}/man/${name}.md)
endforeach()
file(COPY ${OUT}/html/libzorvstat.html DESTINATION ${OUT}/html/tmp)
file(RENAME ${OUT}/html/tmp/libzorvstat.html ${OUT}/html/index.html)
file(REMOVE_RECURSE ${OUT}/html/tmp)
# One name per exported routine, each pointing at its family's page.
file(GLOB links ${OUT}/man3links/*.3)
file(COPY ${links} DESTINATION ${OUT}/man/man3)
