# The headers of borrowed libraries are included by .cpp files alone, so that no type of theirs
# crosses a layer.
file(GLOB_RECURSE headers ${SOURCE}/app/*.h ${SOURCE}/text/*.h ${SOURCE}/directory/*.h ${SOURCE}/templates/*.h
  ${SOURCE}/store/*.h ${SOURCE}/online/*.h ${SOURCE}/selftest/*.h ${SOURCE}/ui/*.h)
list(LENGTH headers count)
if(count LESS 20)
  message(FATAL_ERROR "Only ${count} headers were found below ${SOURCE}.")
endif()
foreach(header IN LISTS headers)
  file(STRINGS ${header} borrowed REGEX "#include *[<\"](sqlite3|curl/|poppler|qpdf/|rapidjson/|modp_|pango/|cairo|fontconfig/)")
  if(borrowed)
    message(SEND_ERROR "${header}: ${borrowed}")
  endif()
endforeach()
