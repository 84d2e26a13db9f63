#include "platform/processes.h"

#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class ProcessesTest : public PlatformTest {
 protected:
  Processes& processes() { return platform().processes(); }
};

TEST_F(ProcessesTest, ListsARunningProgramByItsPath) {
  const Victim victim(platform(), Path("Running Program.exe"));
  ASSERT_NE(victim.Id(), 0U);
  EXPECT_TRUE(EqualText(processes().MainModulePath(victim.Id()).value_or(""), victim.Path()));

  std::vector<ProcessRecord> records = {{1, 2, "left over"}};
  int events = 0;
  const int last = Process32_Enum(processes(), records, [&] { ++events; });
  EXPECT_EQ(last + 1, static_cast<int>(records.size()));
  EXPECT_EQ(events, last + 1);
  EXPECT_TRUE(std::any_of(records.begin(), records.end(), [&](const ProcessRecord& record) {
    return record.id == victim.Id() && EqualText(record.executable, victim.Path());
  }));
}

TEST_F(ProcessesTest, EndsAProgramOnceAndNoCopyOfIt) {
  const Victim victim(platform(), Path("victim.exe"));
  ASSERT_NE(victim.Id(), 0U);
  const Victim copy(platform(), Path("copy.exe"));
  ASSERT_NE(copy.Id(), 0U);
  EXPECT_FALSE(processes().WaitForEnd(victim.Id(), milliseconds(1)));
  EXPECT_TRUE(KillProcess(processes(), victim.Id(), 0));
  EXPECT_TRUE(processes().WaitForEnd(victim.Id(), seconds(10)));
  EXPECT_FALSE(KillProcess(processes(), victim.Id(), 0));
  EXPECT_TRUE(processes().WaitForEnd(victim.Id(), milliseconds(0)));
  EXPECT_TRUE(RunningCopies(processes(), victim.Path()).empty());
  EXPECT_FALSE(processes().MainModulePath(victim.Id()));
  EXPECT_EQ(RunningCopies(processes(), copy.Path()), std::vector<uint32_t>{copy.Id()});
}

TEST_F(ProcessesTest, RefusesTheSystemAndItself) {
  for (const uint32_t id : {0U, 1U, processes().OwnId(), 0xFFFFFFFFU}) {
    EXPECT_FALSE(KillProcess(processes(), id, 0)) << id;
  }
}

TEST(Process32Enum, GivesMinusOneAndNoRecordsWithoutASnapshot) {
  struct Blind : Processes {
    std::optional<std::vector<ProcessRecord>> Snapshot() override { return std::nullopt; }
    std::optional<std::string> MainModulePath(uint32_t) override { return std::nullopt; }
    bool Terminate(uint32_t, uint32_t) override { return false; }
    bool WaitForEnd(uint32_t, milliseconds) override { return true; }
    uint32_t OwnId() override { return 7; }
  } blind;
  std::vector<ProcessRecord> records = {{1, 2, "left over"}};
  EXPECT_EQ(Process32_Enum(blind, records, nullptr), -1);
  EXPECT_TRUE(records.empty());
}

}  // namespace
}  // namespace quarnel
