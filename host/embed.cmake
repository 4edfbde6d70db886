# Writes files as rows of a table: cmake -DOUTPUT=... "-DFILES=a;b" -P embed.cmake
set(rows "")
foreach(path IN LISTS FILES)
  get_filename_component(name ${path} NAME)
  file(READ ${path} content)
  string(APPEND rows "{\"${name}\", R\"www(${content})www\"},\n")
endforeach()
file(WRITE ${OUTPUT} "${rows}")
