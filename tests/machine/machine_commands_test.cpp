#include "machine/machine_commands.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "base/host_files.h"
#include "base/text.h"
#include "machine/registry_transfer.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

namespace fs = std::filesystem;

class MachineCommandsTest : public PlatformTest {
 protected:
  MachineCommandsTest() : file_((fs::temp_directory_path() / "quarnel-test.reg").string()) {}
  ~MachineCommandsTest() override { fs::remove(file_); }

  // What OpenMachine takes for the test's machine.
  std::string Dir() const { return machineFolder().empty() ? "." : machineFolder(); }
  int Run(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream errors;
    const int code = RunMachineTool(arguments, out, errors);
    out_ = out.str();
    errors_ = errors.str();
    EXPECT_EQ(code == 0, errors_.empty()) << errors_;
    EXPECT_EQ(std::count(errors_.begin(), errors_.end(), '\n'), code == 0 ? 0 : 1) << errors_;
    return code;
  }
  int Import(const std::string& body) {
    WriteHostFile(file_, "Windows Registry Editor Version 5.00\n" + body);
    return Run({"reg", "import", Dir(), file_});
  }
  std::string Text(std::string_view key, std::string_view name) {
    return QueryText(registry(), kRoot, Key(key), name);
  }
  static std::string FullKey(std::string_view name) { return "HKCU\\" + Key(name); }

  std::string file_;
  std::string out_;
  std::string errors_;
};

TEST_F(MachineCommandsTest, ImportsExportsAndQueries) {
  ASSERT_EQ(Import("[" + FullKey("a\\b") + "]\n\"text\"=\"C:\\\\dir\"\n\"n\"=dword:0000000a\n" +
                   "@=\"default\"\n\"x\"=hex(2):25,00,41,00,00,00\n\"y\"=hex:01,02\n[" +
                   FullKey("a\\c") + "]\n\"v\"=\"1\"\n"),
            0)
      << errors_;
  const auto query = [&](const std::string& key, const std::string& name) {
    return Run({"reg", "query", Dir(), key, name}) == 0 ? out_ : "failed";
  };
  EXPECT_EQ(query(FullKey("A\\B"), "TEXT"), "C:\\dir\n");
  EXPECT_EQ(query(FullKey("a\\b"), "n"), "10\n");
  EXPECT_EQ(query(FullKey("a\\b"), ""), "default\n");
  EXPECT_EQ(query(FullKey("a\\b"), "x"), "%A\n");
  EXPECT_EQ(query(FullKey("a\\b"), "y"), "hex:01,02\n");
  EXPECT_EQ(query(FullKey("a\\b"), "none"), "failed");
  EXPECT_EQ(Run({"reg", "query", Dir(), FullKey("none")}), 1);
  EXPECT_EQ(Run({"reg", "query", Dir(), FullKey("a")}), 0);
  EXPECT_EQ(out_,
            "[HKEY_CURRENT_USER\\" + Key("a\\b") + "]\n[HKEY_CURRENT_USER\\" + Key("a\\c") + "]\n");

  ASSERT_EQ(Run({"reg", "export", Dir(), file_, FullKey("a")}), 0);
  const std::string exported = ReadHostFile(file_);
  DeleteKeyTree(registry(), kRoot, Key("a"), nullptr);
  ASSERT_EQ(Run({"reg", "import", Dir(), file_, FullKey("A\\B")}), 0);
  EXPECT_EQ(Text("a\\b", "text"), "C:\\dir");
  EXPECT_EQ(Text("a\\c", "v"), "");
  ASSERT_EQ(Run({"reg", "import", Dir(), file_}), 0);
  ASSERT_EQ(Run({"reg", "export", Dir(), file_, FullKey("a")}), 0);
  EXPECT_EQ(ReadHostFile(file_), exported);
  EXPECT_EQ(Run({"reg", "export", Dir(), file_, FullKey("none")}), 1);
}

TEST_F(MachineCommandsTest, ImportDeletesAndStopsAtErrors) {
  ASSERT_EQ(Import("[" + FullKey("d\\e") + "]\n\"v\"=\"1\"\n\"w\"=\"2\"\n[" + FullKey("f") + "]\n"),
            0);
  EXPECT_EQ(Import("[-" + FullKey("f") + "]\n[-" + FullKey("none") + "]\n[" + FullKey("d\\e") +
                   "]\n\"v\"=-\n\"none\"=-\n"),
            0);
  EXPECT_EQ(Text("d\\e", "v"), "");
  EXPECT_EQ(Text("d\\e", "w"), "2");
  EXPECT_EQ(EnumSubKeys(registry(), kRoot, kTestKey), Strings{"d"});
  // Of a file with an error nothing is taken.
  EXPECT_EQ(Import("[" + FullKey("g") + "]\n\"v\"=\n"), 1);
  EXPECT_NE(errors_.find("quarnel-test.reg:3: "), std::string::npos) << errors_;
  EXPECT_EQ(EnumSubKeys(registry(), kRoot, kTestKey), Strings{"d"});
}

TEST_F(MachineCommandsTest, AnswersBadCallsWithOneLine) {
  EXPECT_EQ(Run({}), 1);
  for (const std::string_view call :
       {"unknown", "reg", "reg unknown x y", "create", "create ", "create x --user",
        "create x --family os2", "create x extra", "path x", "reg query DIR",
        "reg query DIR HKXX\\a", "reg query DIR HKCU a b", "reg import DIR file nokey"}) {
    EXPECT_EQ(Run(Split(Replace(call, "DIR", Dir()), " ")), 1) << call;
  }
  EXPECT_EQ(Run({"--help"}), 0);
  EXPECT_NE(out_.find("reg query DIR KEY [VALUE]\n"), std::string::npos) << out_;
  EXPECT_EQ(Run({"reg", "query", Dir() + "/none", "HKCU"}), 1);
  EXPECT_EQ(Run({"reg", "import", Dir(), file_ + "-none"}), 1);
  EXPECT_EQ(Run({"reg", "export", Dir(), file_ + "/none/x"}), 1);
}

}  // namespace
}  // namespace quarnel
