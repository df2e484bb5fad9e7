#include "../../io/files.h"

#include "../../io/messages.h"
#include "../support/refusal.h"
#include "../support/tool_run.h"

namespace qal::io {
namespace {

using Files = InOwnFolder;

// A file's place before it is written, and what is in the folder then: name, type, permissions and
// where a link leads, then the content.
TEST_F(Files, AreWrittenWherePermissionsAndLinksSay) {
  const struct {
    const char* before;
    const char* after;
    const char* refusal = "not refused";
  } rows[] = {
      {"echo old > out; chmod 444 out", "out f 444 \nold\n",  // root isn't asked by the system
       "cannot write out: no write permission; chmod +w, or choose another name"},
      {"echo old > out; chmod 6750 out", "out f 750 \nnew"},
      {"echo old > a; chmod 600 a; ln -s a b; ln -s b out",
       "a f 600 \nb l 777 a\nout l 777 b\nnew"},
      {"mkdir d; ln -s d/a out", "d d 755 \nd/a f 644 \nout l 777 d/a\nnew"},
      {"ln -s none/a out", "out l 777 none/a\n", "cannot write out: No such file or directory"},
      {"ln -s out out", "out l 777 out\n", "cannot write out: Too many levels of symbolic links"},
  };
  for (const auto& [before, after, refusal] : rows) {
    (void)Shell(std::string("rm -rf *; umask 022; ") + before);  // what comes of it is seen below
    EXPECT_EQ(Refusal([] { WriteFile("out", "new"); }), refusal);
    EXPECT_EQ(Shell("find * -printf '%p %y %m %l\\n' | sort; cat out").out, after) << before;
  }
}

TEST_F(Files, AreTheSameByWhateverName) {
  (void)Shell("echo > a; ln a hard; ln -s a soft; ln -s none dangling; mkdir d; echo > b");
  for (const char* name : {"a", "./a", "d/../a", "hard", "soft"}) EXPECT_TRUE(SameFile("a", name));
  EXPECT_TRUE(SameFile("d/../none", "dangling"));
  for (const char* name : {"b", "none", "dangling", "-"}) EXPECT_FALSE(SameFile("a", name));
  EXPECT_FALSE(SameFile("/dev/null", "/dev/null"));
}

TEST(Names, AreShownInOneLineThatMovesNoCursor) {
  EXPECT_EQ(NameText("a\x1b[31m\r\nb\x7f\xc2\x9b\xc3\xa4"), "a [31m  b   \xc3\xa4");
  // Cut before the character that would be split.
  EXPECT_EQ(NameText(std::string(59, 'a') + "\xc3\xa4\xc3\xa4"), std::string(59, 'a') + "...");
}

}  // namespace
}  // namespace qal::io
