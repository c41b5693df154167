// The operating system as the program sees it.
#include "host/real_host.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace kiln {

namespace fs = std::filesystem;

// In an empty folder.
class RealFiles : public testing::Test {
 protected:
  RealFiles() : root(testing::TempDir() + "kiln-XXXXXX"), file(std::string(::mkdtemp(root.data())) + "/.file") {}
  ~RealFiles() override { fs::remove_all(root); }

  bool writeFile(const std::string& path, std::string_view bytes) {
    const std::string_view parts[] = {bytes.substr(0, bytes.size() / 2), "", bytes.substr(bytes.size() / 2)};
    return host.writeFile(path, parts);
  }

  std::string root, file;
  const std::string large = std::string(100000, 'a');
  RealHost host;
};

// What a stranger's project names must not stop a server.
TEST_F(RealFiles, AreAllThatAServerReads) {
  const RealHost server(Reading::RegularFiles);
  const std::string pipe = root + "/pipe";
  const std::string huge = root + "/huge";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_TRUE(writeFile(file, large) && writeFile(huge, "a"));
  fs::resize_file(huge, (uintmax_t{1} << 30) + 1);
  EXPECT_EQ(server.readFile(file), large);
  for (const std::string& path : {pipe, huge, root, std::string("/dev/zero")})
    EXPECT_EQ(server.readFile(path), std::nullopt) << path;
  EXPECT_FALSE(server.wasRead(file));
}

TEST_F(RealFiles, AreReadAsTheyWereWritten) {
  for (const std::string& bytes : {large, std::string(), std::string("x\r\n\0\xFF", 5)}) {
    EXPECT_TRUE(writeFile(file, bytes) && host.exists(file) && !host.isDirectory(file));
    EXPECT_EQ(host.readFile(file), bytes);
    fs::permissions(file, fs::perms(0604));
  }
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0604));
  EXPECT_EQ(host.listDirectory(root), std::vector<std::string>{".file"});
  EXPECT_EQ(host.listDirectory(file), std::nullopt);
  EXPECT_TRUE(host.wasRead(root + "/./.file") && !host.wasRead(root) && !host.wasRead("none"));
}

TEST_F(RealFiles, AreNeitherReadNorWrittenWhereNoFileCanBe) {
  writeFile(file, "old");
  // A path is not cut at its NUL: what the rest would name is left alone.
  const std::string cut("\0y", 2);
  for (const std::string& name : {root + "/none/x", root, file + cut, root + cut, std::string()}) {
    EXPECT_FALSE(writeFile(name, "z") || host.readFile(name).has_value()) << name;
    EXPECT_TRUE(host.exists(name) == (name == root) && host.isDirectory(name) == (name == root)) << name;
  }
  fs::permissions(file, fs::perms::none);
  EXPECT_TRUE(::geteuid() == 0 || !(host.readFile(file).has_value() || writeFile(file, "x")));
}

TEST_F(RealFiles, StayAsTheyWereWhenTheNewTextDoesNotFit) {
  writeFile(file, "old");
  rlimit limit{};
  EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{1000, limit.rlim_max};
  EXPECT_TRUE(::setrlimit(RLIMIT_FSIZE, &small) == 0 && !writeFile(file, large));
  EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  EXPECT_EQ(host.readFile(file), "old");
  EXPECT_EQ(host.listDirectory(root), std::vector<std::string>{".file"});
}

TEST_F(RealFiles, KeepTheirOtherNamesAndTheLinksToThem) {
  EXPECT_TRUE(writeFile(file, "old"));
  fs::create_hard_link(file, root + "/link");
  EXPECT_TRUE(writeFile(root + "/link", large) && host.readFile(file) == large);
  fs::create_symlink("new", root + "/dangling");
  EXPECT_TRUE(writeFile(root + "/dangling", "new") && host.readFile(root + "/new") == "new");
  // The device has no room for anything.
  fs::create_symlink("/dev/full", root + "/full");
  EXPECT_FALSE(writeFile(root + "/full", "x"));
  EXPECT_TRUE(fs::is_symlink(root + "/full") && fs::is_symlink(root + "/dangling"));
}

TEST_F(RealFiles, MayBePipesWhoseLengthIsUnknown) {
  int ends[2] = {};
  EXPECT_TRUE(::pipe(ends) == 0 && ::write(ends[1], large.data(), 30000) == 30000 && ::close(ends[1]) == 0);
  EXPECT_EQ(host.readFile("/dev/fd/" + std::to_string(ends[0])), large.substr(0, 30000));
}

// As a user who owns neither folder nor file: root may write everywhere.
TEST_F(RealFiles, AreWrittenInPlaceWhereTheFolderForbidsANewFileOrItsRenaming) {
  constexpr uid_t nobody = 65534;
  const uid_t user = ::geteuid();
  for (const unsigned folderMode : {0555u, 01777u}) {
    if (folderMode == 01777u && user != 0) break;  // only a sticky folder of somebody else forbids
    writeFile(file, "the old text");
    fs::permissions(file, fs::perms(0666));
    fs::permissions(root, fs::perms(folderMode));
    EXPECT_EQ(user == 0 ? ::seteuid(nobody) : 0, 0);
    EXPECT_TRUE(writeFile(file, "new") && writeFile(root + "/other", "new") == (folderMode == 01777u));
    EXPECT_EQ(user == 0 ? ::seteuid(0) : 0, 0);
    fs::permissions(root, fs::perms(0755));
    fs::remove(root + "/other");
    EXPECT_EQ(host.readFile(file), "new");
    EXPECT_EQ(host.listDirectory(root), std::vector<std::string>{".file"});
  }
}

TEST(RealHost, HasVariablesAndTwoStreams) {
  RealHost host;
  EXPECT_TRUE(host.environment("PATH") == std::getenv("PATH") && !host.environment("KILN_TEST_NONE").has_value());
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  host.printOutput("out\n");
  host.printError("“err”");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "“err”");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "out\n");
}

}  // namespace kiln
