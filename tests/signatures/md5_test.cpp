#include "signatures/md5.h"

#include "signatures/signature_folder.h"

namespace quarnel {
namespace {

TEST(Md5, ReferenceMessages) {
  // RFC 1321, appendix A.5.
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", "D41D8CD98F00B204E9800998ECF8427E"},
      {"a", "0CC175B9C0F1B6A831C399E269772661"},
      {"abc", "900150983CD24FB0D6963F7D28E17F72"},
      {"message digest", "F96B697D7CB7938D525A2F31AAF161D0"},
      {"abcdefghijklmnopqrstuvwxyz", "C3FCD3D76192E4007DFB496CCA67E13B"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
       "D174AB98D277D9F5A5611C2C9F419D9F"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57EDF4A22BE3C955AC49DA2E2107B67A"},
  };
  for (const auto& [message, hash] : cases) EXPECT_EQ(HexText(Md5Of(message)), hash) << message;
}

TEST(Md5, PiecesMakeOneMessage) {
  std::string message;
  for (int i = 0; i < 300; ++i) message += static_cast<char>(i * 7);
  const std::string whole = HexText(Md5Of(message));
  for (size_t piece = 1; piece < 140; ++piece) {
    Md5 md5;
    for (size_t at = 0; at < message.size(); at += piece) {
      md5.Update(std::string_view(message).substr(at, piece));
      md5.Update({});
    }
    ASSERT_EQ(HexText(md5.Finish()), whole) << piece;
  }
}

using HashFileTest = SignatureFolderTest;

TEST_F(HashFileTest, BlanksWhereNothingCanBeRead) {
  Put("empty", "");
  EXPECT_EQ(HashFile(files(), Path("empty")), "D41D8CD98F00B204E9800998ECF8427E");
  EXPECT_EQ(HashFile(files(), Path("missing")), kNoHash);
  EXPECT_EQ(HashFile(files(), Scratch()), kNoHash);
  EXPECT_EQ(HashFile(files(), ""), kNoHash);
  EXPECT_EQ(kNoHash.size(), 32U);
}

TEST_F(HashFileTest, StopsBetweenPieces) {
  const std::string content(3'000'000, 'z');
  Put("large", content);
  EXPECT_EQ(HashFile(files(), Path("large")), HexText(Md5Of(content)));
  int asked = 0;
  EXPECT_EQ(HashFile(files(), Path("large"), [&] { return ++asked == 3; }), kNoHash);
  EXPECT_EQ(asked, 3);
}

}  // namespace
}  // namespace quarnel
