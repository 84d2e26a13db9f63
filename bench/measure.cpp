#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

// bench-measure FILE COMMAND...
//
// Runs a command and appends one line to FILE: the seconds that it took from its start to its end,
// and the most memory that one of its processes held, in KiB. Exits as the command does.
int main(int argc, char** argv) {
  if (argc < 3) {
    (void)std::fputs("usage: bench-measure FILE COMMAND...\n", stderr);
    return 2;
  }
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) {
    execvp(argv[2], argv + 2);
    std::perror(argv[2]);
    _exit(127);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) {
    std::perror("bench-measure");
    return 1;
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  struct rusage usage = {};
  getrusage(RUSAGE_CHILDREN, &usage);
  std::FILE* const file = std::fopen(argv[1], "a");
  if (file == nullptr) {
    std::perror(argv[1]);
    return 1;
  }
  (void)std::fprintf(file, "%.6f %ld\n", seconds.count(), usage.ru_maxrss);
  (void)std::fclose(file);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
