#include "scan/file_scan.h"

#include <gmock/gmock.h>

#include "base/text.h"
#include "core/paths.h"
#include "platform/pe_writer.h"
#include "scan/folders.h"
#include "scan/scan_fixture.h"
#include "signatures/md5.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr int kProgramFiles = 31;

class FileScanTest : public ScanTest {
 protected:
  FileScan fileScan{context};
  std::string folder = GetFolder(machine(), kProgramFiles).front() + "Planted\\";

  std::string HashOf(std::string_view content) { return HexText(Md5Of(content)); }

  // A line for a path below the planted folder.
  static std::string Line(std::string_view company, std::string_view threat, std::string_view path,
                          std::string_view hash) {
    return Join({std::string(company), std::string(threat), "1,31,Planted\\" + std::string(path),
                 std::string(hash), "ID\n"},
                ",");
  }

  std::vector<std::string> Scan(const std::string& source) {
    Install({.files = source});
    fileScan.ScanSignatureFiles();
    return Texts(resultsPage.lvwFilesToBeDeleted);
  }
};

TEST_F(FileScanTest, CompanyOrHashMakesAFileTheThreat) {
  const std::string program = MakeProgram({.companyName = "Examplesoft Labs"});
  Write(folder + "program.exe", program);
  Write(folder + "plain.txt", "content");
  Write(folder + "link.lnk", "");
  const std::string other = HashOf("other");
  const struct {
    std::string_view name, company;
    std::string hash;
    bool found;
  } kCases[] = {
      {"program.exe", "EXAMPLESOFT labs", "", true},
      {"program.exe", "Examplesoft Labs", other, true},
      {"program.exe", "Others", other, false},
      {"program.exe", "unknown", HashOf(program), true},
      {"program.exe", "UNKNOWN", "", false},
      {"plain.txt", "Others", HashOf("content"), true},
      {"plain.txt", "Others", "", true},  // a company without a hash needs only the file
      {"plain.txt", "unknown", other, false},
      {"PLAIN.TXT", "unknown", ToLower(HashOf("content")), true},
      {"link.lnk", "unknown", "", true},
      {"missing.lnk", "unknown", "", false},
      {"*.txt", "Others", "", false},
      {"", "Others", "", false},
  };
  for (const auto& testCase : kCases) {
    std::string result;
    fileScan.CheckValidFile(folder + std::string(testCase.name), testCase.company, testCase.hash,
                            result);
    EXPECT_EQ(result, testCase.found ? "True" : "False")
        << testCase.name << " / " << testCase.company << " / " << testCase.hash;
  }
}

TEST_F(FileScanTest, FindsFilesInAnyLetterCaseAndTellsProgress) {
  Write(folder + "Bad.exe", "bad");
  std::string source = Line("unknown", "Threat", "bAD.EXE", HashOf("bad"));
  // Enough questions to one folder that it is listed.
  for (int i = 0; i < 20; ++i) {
    source += Line("unknown", "Other", "missing" + std::to_string(i), HashOf("x"));
  }
  source += Line("unknown", "Threat", "BAD.exe", HashOf("bad"));
  page.pbgMain.SetMax(10);
  EXPECT_THAT(Scan(source), ElementsAre(folder + "bAD.EXE", folder + "BAD.exe"));
  EXPECT_EQ(page.lblFilesFolderInspected.Caption(), "22");
  EXPECT_EQ(page.pbgMain.Value(), 10);
  EXPECT_EQ(page.lblPercentageCompleted.Caption(),
            "Scanning Signature Files/Folder : 100% Completed.");
  EXPECT_EQ(resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.At(0).tag, "ID");
}

TEST_F(FileScanTest, FolderSignatureTakesAllFilesBeforeSubFolders) {
  Write(folder + "Kit\\a\\deep.dat", "1");
  Write(folder + "Kit\\z.dat", "2");
  Write(folder + "Kit\\with,comma.dat", "3");
  const std::string source =
      Line("Any", "Kit", "Kit[[FOLDER]]", "") + Line("Any", "Gone", "NoSuchFolder[[FOLDER]]", "");
  // A comma in a path shifts the fields behind it, so that file is passed over.
  EXPECT_THAT(Scan(source), ElementsAre(folder + "Kit\\z.dat", folder + "Kit\\a\\deep.dat"));
  EXPECT_THAT(LogText(), IsEmpty());
}

TEST_F(FileScanTest, UserTokenStandsForTheUser) {
  const std::string name = "of " + machine().UserName() + ".txt";
  Write(folder + name, "");
  EXPECT_THAT(Scan(Line("Any", "T", "of [[USER]].txt", "")), ElementsAre(folder + name));
}

TEST_F(FileScanTest, ShortLineEndsThePhaseAndIsLogged) {
  Write(folder + "bad.exe", "bad");
  Install({.files = Line("Any", "T", "bad.exe", "")});
  const std::string path = DataFolder(machine()) + "QNLFSig.dll";
  AppendToFile(files(), path, "\r\n");
  fileScan.ScanSignatureFiles();
  EXPECT_EQ(resultsPage.lvwFilesToBeDeleted.Count(), 1U);
  EXPECT_THAT(LogText(), HasSubstr("Error Number :  9\r\n"));
  EXPECT_THAT(LogText(), HasSubstr("ScanSignatureFiles in frmMain"));
}

TEST_F(FileScanTest, StopEndsThePhaseBetweenTwoLines) {
  Write(folder + "bad.exe", "bad");
  std::string source;
  for (int i = 0; i < 5; ++i) source += Line("Any", "T" + std::to_string(i), "bad.exe", "");
  host.onEvents = [&] {
    if (page.lblFilesFolderInspected.Caption() == "2") flags.scanStopRequested = true;
  };
  EXPECT_EQ(Scan(source).size(), 2U);
}

TEST_F(FileScanTest, FoldersOfCodesAndWords) {
  for (int code = 1; code <= 43; ++code) {
    EXPECT_THAT(GetFolder(machine(), code), ElementsAre(EndsWith("\\"))) << code;
  }
  for (const int code : {0, 44, -1}) EXPECT_THAT(GetFolder(machine(), code), ElementsAre(""));
  const std::string root = GetSystemRootPath(machine(), registry());
  const auto folders = [&](std::string_view word) {
    return GetRegistryFolder(machine(), registry(), word);
  };
  EXPECT_THAT(folders("SYSTEM_DIRECTORY"), ElementsAre(root + "System\\", root + "System32\\"));
  EXPECT_THAT(folders("ROOT"), ElementsAre(root.substr(0, 3)));
  EXPECT_THAT(folders("PROGRAM_FILES"), ElementsAre(GetProgramFilesPath(registry())));
  EXPECT_THAT(folders("windows"), ElementsAre(""));
}

}  // namespace
}  // namespace quarnel
