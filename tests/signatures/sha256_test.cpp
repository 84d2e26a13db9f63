#include "signatures/sha256.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

// The standard's own examples, and lengths about the padding's edges.
TEST(Sha256, GivesTheStandardsDigests) {
  const struct {
    std::string message;
    const char* digest;
  } cases[] = {
      {"", "E3B0C44298FC1C149AFBF4C8996FB92427AE41E4649B934CA495991B7852B855"},
      {"abc", "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
       "248D6A61D20638B8E5C026930C3E6039A33CE45964FF2167F6ECEDD419DB06C1"},
      {std::string(1000000, 'a'),
       "CDC76E5C9914FB9281A1C7E284D73E67F1809A48A497200E046D39CCC7112CD0"},
  };
  for (const auto& [message, digest] : cases) EXPECT_EQ(HexText(Sha256Of(message)), digest);
}

TEST(Sha256, TakesAMessageInAnyPieces) {
  std::string message;
  for (size_t length = 0; length < 200; ++length) {
    const Sha256Digest whole = Sha256Of(message);
    for (const size_t piece : {size_t{1}, size_t{63}, size_t{64}, size_t{65}}) {
      Sha256 hash;
      for (size_t at = 0; at < message.size(); at += piece) {
        hash.Update(std::string_view(message).substr(at, piece));
      }
      EXPECT_EQ(hash.Finish(), whole) << length << " in pieces of " << piece;
    }
    message += static_cast<char>(length * 7);
  }
}

}  // namespace
}  // namespace quarnel
