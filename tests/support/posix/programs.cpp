#include "support/posix/programs.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace quarnel {
namespace {

std::vector<char*> ArgumentsOf(const std::vector<std::string>& words) {
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  return arguments;
}

}  // namespace

int RunProgram(const std::vector<std::string>& words) {
  const std::vector<char*> arguments = ArgumentsOf(words);
  const pid_t child = fork();
  if (child == 0) {
    execvp(arguments.front(), arguments.data());
    _exit(127);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

int BecomeProgram(const std::vector<std::string>& words, const std::string& input) {
  const int in = memfd_create("input", 0);
  if (write(in, input.data(), input.size()) < 0 || lseek(in, 0, SEEK_SET) < 0) return -1;
  if (dup2(in, STDIN_FILENO) < 0) return -1;
  // The leak check would need the place of a tracer; what a sanitizer finds is told apart from what
  // the program says.
  if (setenv("ASAN_OPTIONS", "detect_leaks=0:exitcode=99", 1) != 0) return -1;
  if (setenv("UBSAN_OPTIONS", "halt_on_error=1:exitcode=99", 1) != 0) return -1;
  const std::vector<char*> arguments = ArgumentsOf(words);
  execv(arguments.front(), arguments.data());
  return -1;
}

}  // namespace quarnel
