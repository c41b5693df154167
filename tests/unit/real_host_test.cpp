// The operating system as the program sees it.
#include "host/real_host.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>

namespace kiln {

TEST(RealHost, GivesWhatIsThereAsItStandsAndSaysWhenItCannot) {
  std::string root = testing::TempDir() + "kiln-XXXXXX";
  const std::string file = std::string(::mkdtemp(root.data())) + "/.file", cut("\0y", 2), odd("x\r\n\0\xFF", 5);
  const std::string large(100000, 'a');
  RealHost host;
  const auto writeFile = [&host](const std::string& path, std::string_view bytes) {
    const std::string_view parts[] = {bytes.substr(0, bytes.size() / 2), "", bytes.substr(bytes.size() / 2)};
    return host.writeFile(path, parts);
  };
  for (const std::string& bytes : {large, std::string(), odd}) {
    EXPECT_TRUE(writeFile(file, bytes) && host.exists(file) && !host.isDirectory(file));
    EXPECT_EQ(host.readFile(file), bytes);
    std::filesystem::permissions(file, std::filesystem::perms(0604));
  }
  EXPECT_TRUE(host.wasRead(root + "/./.file") && !host.wasRead(root) && !host.wasRead("none"));
  EXPECT_EQ(host.listDirectory(file), std::nullopt);
  // A path is never cut at its NUL: nothing happens to what the rest would name.
  for (const std::string& name : {root + "/none/x", root, file + cut, root + cut, std::string()}) {
    EXPECT_FALSE(writeFile(name, "z") || host.readFile(name).has_value()) << name;
    EXPECT_TRUE(host.exists(name) == (name == root) && host.isDirectory(name) == (name == root)) << name;
  }
  // A file that does not fit leaves nothing behind, and the old one as it was.
  rlimit limit{};
  const bool isLimited = ::getrlimit(RLIMIT_FSIZE, &limit) == 0;
  const rlimit small{1000, limit.rlim_max};
  const bool isWritten = ::setrlimit(RLIMIT_FSIZE, &small) != 0 || writeFile(file, large);
  EXPECT_TRUE(::setrlimit(RLIMIT_FSIZE, &limit) == 0 && isLimited && !isWritten);
  EXPECT_EQ(host.readFile(file), odd);
  EXPECT_EQ(host.listDirectory(root), std::vector<std::string>{".file"});
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0604));
  // All names of a file are written through.
  std::filesystem::create_hard_link(file, root + "/link");
  EXPECT_TRUE(writeFile(root + "/link", large) && host.readFile(file) == large);
  // A link is written through, here to the device on which nothing has room.
  std::filesystem::create_symlink("/dev/full", root + "/full");
  EXPECT_FALSE(std::filesystem::is_character_file(root + "/full") && writeFile(root + "/full", "x"));
  EXPECT_TRUE(std::filesystem::is_symlink(root + "/full"));
  std::filesystem::permissions(file, std::filesystem::perms::none);
  EXPECT_TRUE(::geteuid() == 0 || !(host.readFile(file).has_value() || writeFile(file, "x")));
  std::filesystem::remove_all(root);
  // What is read piece by piece does not tell its length.
  int ends[2] = {};
  EXPECT_TRUE(::pipe(ends) == 0 && ::write(ends[1], large.data(), 30000) == 30000 && ::close(ends[1]) == 0);
  EXPECT_EQ(host.readFile("/dev/fd/" + std::to_string(ends[0])), large.substr(0, 30000));
  EXPECT_TRUE(host.environment("PATH") == std::getenv("PATH") && !host.environment("KILN_TEST_NONE").has_value());
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  host.printOutput("out\n");
  host.printError("“err”");
  EXPECT_EQ(testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout(), "“err”out\n");
}

// As a user who owns neither folder nor file: root itself is forbidden nothing.
TEST(RealHost, WritesInPlaceWhereTheFolderForbidsANewFileOrItsRenaming) {
  namespace fs = std::filesystem;
  constexpr uid_t nobody = 65534;
  std::string root = testing::TempDir() + "kiln-XXXXXX";
  const std::string file = std::string(::mkdtemp(root.data())) + "/file";
  const std::string_view parts[] = {"ne", "w"};
  RealHost host;
  for (const unsigned folderMode : {0555u, 01777u}) {
    if (folderMode == 01777u && ::geteuid() != 0) break;  // only a sticky folder of somebody else forbids
    EXPECT_TRUE(host.writeFile(file, std::array<std::string_view, 1>{"the old text"}));
    fs::permissions(file, fs::perms(0666));
    fs::permissions(root, fs::perms(folderMode));
    const uid_t user = ::geteuid();
    EXPECT_EQ(user == 0 ? ::seteuid(nobody) : 0, 0);
    EXPECT_TRUE(host.writeFile(file, parts));
    EXPECT_EQ(host.writeFile(root + "/other", parts), folderMode == 01777u);
    EXPECT_EQ(user == 0 ? ::seteuid(0) : 0, 0);
    fs::permissions(root, fs::perms(0755));
    fs::remove(root + "/other");
    EXPECT_EQ(host.readFile(file), "new");
    EXPECT_EQ(host.listDirectory(root), std::vector<std::string>{"file"});
  }
  fs::remove_all(root);
}

}  // namespace kiln
