#include "support/second_process.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

namespace quarnel {

bool ImportByAnotherProcess(const std::string& machineFolder, const std::string& regText) {
  std::string file = machineFolder + "/import.reg";
  std::ofstream(file, std::ios::binary) << regText;
  std::string program = QUARNEL_MACHINE_PROGRAM;
  std::string words[] = {program, "reg", "import", machineFolder, file};
  char* const arguments[] = {words[0].data(), words[1].data(), words[2].data(),
                             words[3].data(), words[4].data(), nullptr};
  pid_t id = 0;
  int status = -1;
  if (posix_spawn(&id, program.c_str(), nullptr, nullptr, arguments, environ) != 0) return false;
  return waitpid(id, &status, 0) == id && status == 0;
}

}  // namespace quarnel
