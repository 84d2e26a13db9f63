// What only a machine folder has to care for: a running program may be deleted or renamed, numbers
// of processes are given out again, and most processes of the system are none of the machine's.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

class PosixProcessesTest : public PlatformTest {
 protected:
  Processes& processes() { return platform().processes(); }
};

TEST_F(PosixProcessesTest, KnowsProgramsThatWereDeletedOrAreCalledSo) {
  const Victim deleted(platform(), Path("deleted.exe"));
  const Victim renamed(platform(), Path("renamed.exe"));
  const Victim called(platform(), Path("called.exe (deleted)"));
  const Victim both(platform(), Path("both.exe (deleted)"));
  files().Delete(deleted.Path());
  files().Delete(both.Path());
  files().Move(renamed.Path(), Path("new name.exe"));
  const std::pair<uint32_t, std::string> expected[] = {{deleted.Id(), deleted.Path()},
                                                       {renamed.Id(), Path("new name.exe")},
                                                       {called.Id(), called.Path()},
                                                       {both.Id(), both.Path()}};
  for (const auto& [id, path] : expected) {
    ASSERT_NE(id, 0U) << path;
    EXPECT_EQ(processes().MainModulePath(id), path);
  }
}

TEST_F(PosixProcessesTest, LeavesOtherProgramsOfTheSystemAlone) {
  const pid_t child = fork();
  if (child == 0) {
    for (;;) pause();
  }
  const auto id = static_cast<uint32_t>(child);
  EXPECT_FALSE(processes().MainModulePath(id));
  EXPECT_FALSE(KillProcess(processes(), id, 0));
  EXPECT_FALSE(processes().WaitForEnd(id, std::chrono::milliseconds(20)));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

TEST_F(PosixProcessesTest, NeverEndsAnotherProcessOfTheSameNumber) {
  uint32_t id = 0;
  {
    const Victim first(platform(), Path("first.exe"));
    id = first.Id();
    usleep(50000);  // processes are told apart by their start, in steps of some 10 ms
  }
  ASSERT_NE(id, 0U);
  platform().shell().Run("C:\\none.exe", "");  // lets the shell see its end, which frees the number
  // Only a privileged process may say which number comes next.
  const auto asksForNumber = [id] { std::ofstream("/proc/sys/kernel/ns_last_pid") << id - 1; };
  WriteWholeFile(files(), Path("second.exe"), EmbeddedBytes("quarnel-sample-program"));
  asksForNumber();
  ASSERT_TRUE(platform().shell().Run(Path("second.exe"), "60"));
  const auto other = OpenPlatform(machineFolder());
  ASSERT_TRUE(
      Eventually([&] { return !RunningCopies(other->processes(), Path("second.exe")).empty(); }));
  if (RunningCopies(other->processes(), Path("second.exe")) == std::vector<uint32_t>{id}) {
    EXPECT_FALSE(processes().Terminate(id, 0));
    EXPECT_TRUE(processes().WaitForEnd(id, std::chrono::milliseconds(0)));
    EXPECT_EQ(RunningCopies(other->processes(), Path("second.exe")).size(), 1U);
  }
  for (const uint32_t running : RunningCopies(other->processes(), Path("second.exe"))) {
    EXPECT_TRUE(other->processes().Terminate(running, 0));
    if (running != id) GTEST_SKIP() << "the system does not give a process number on demand";
  }
}

}  // namespace
}  // namespace quarnel
