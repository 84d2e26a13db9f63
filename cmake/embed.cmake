# Writes a C++ source that holds files byte for byte: a table of name and bytes.
#   cmake -DOUTPUT=FILE.cpp -DNAMES="a;b" -DFILES="/path/a;/path/b" -P embed.cmake
set(source "#include \"machine/embedded.h\"\n\nnamespace quarnel {\nnamespace {\n\n")
set(table "")
list(LENGTH FILES count)
math(EXPR last "${count} - 1")
foreach(index RANGE ${last})
  list(GET NAMES ${index} name)
  list(GET FILES ${index} file)
  file(READ ${file} hex HEX)
  string(REGEX REPLACE "(..)" "\\\\x\\1" literal "${hex}")
  string(APPEND source "constexpr char kBytes${index}[] = \"${literal}\";\n")
  string(APPEND table "    {\"${name}\", {kBytes${index}, sizeof kBytes${index} - 1}},\n")
endforeach()
string(APPEND source "\nconstexpr EmbeddedFile kFiles[] = {\n${table}};\n\n}  // namespace\n\n"
                     "std::span<const EmbeddedFile> EmbeddedFiles() { return kFiles; }\n\n"
                     "}  // namespace quarnel\n")
file(WRITE ${OUTPUT} "${source}")
