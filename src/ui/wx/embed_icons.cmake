# Writes a C++ source that holds the icons: a table of name and SVG text.
#   cmake -DOUTPUT=FILE.cpp -DFILES="/path/a.svg;/path/b.svg" -P embed_icons.cmake
set(table "")
foreach(file IN LISTS FILES)
  get_filename_component(name ${file} NAME_WE)
  file(READ ${file} text)
  string(APPEND table "    {\"${name}\", R\"svg(${text})svg\"},\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"ui/wx/icon_files.h\"\n\nnamespace quarnel {\n\n"
                     "std::span<const IconFile> IconFiles() {\n"
                     "  static constexpr IconFile kFiles[] = {\n${table}  };\n"
                     "  return kFiles;\n}\n\n}  // namespace quarnel\n")
