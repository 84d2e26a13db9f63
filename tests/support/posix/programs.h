#pragma once

#include <string>
#include <vector>

namespace quarnel {

// Runs a program to its end; its exit code, or -1.
int RunProgram(const std::vector<std::string>& words);

// Becomes a program with the text as its standard input. Returns only when that failed.
int BecomeProgram(const std::vector<std::string>& words, const std::string& input);

}  // namespace quarnel
