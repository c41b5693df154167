// The operating system as the program sees it.
#include "host/real_host.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace kiln {

TEST(RealHost, GivesWhatIsThereAsItStandsAndSaysWhenItCannot) {
  std::string root = testing::TempDir() + "kiln-XXXXXX";
  const std::string file = std::string(::mkdtemp(root.data())) + "/.file", cut("\0y", 2), odd("x\r\n\0\xFF", 5);
  RealHost host;
  for (const std::string& bytes : {std::string(100000, 'a'), std::string(), odd}) {
    EXPECT_TRUE(host.writeFile(file, bytes) && host.exists(file) && !host.isDirectory(file));
    EXPECT_EQ(host.readFile(file), bytes);
  }
  EXPECT_EQ(host.listDirectory(root), std::vector<std::string>{".file"});
  EXPECT_EQ(host.listDirectory(file), std::nullopt);
  // A path is never cut at its NUL: nothing happens to what the rest would name.
  for (const std::string& name : {root + "/none/x", root, file + cut, root + cut, std::string()}) {
    EXPECT_FALSE(host.writeFile(name, "z") || host.readFile(name).has_value()) << name;
    EXPECT_TRUE(host.exists(name) == (name == root) && host.isDirectory(name) == (name == root)) << name;
  }
  EXPECT_EQ(host.readFile(file), odd);
  EXPECT_FALSE(std::filesystem::exists("/dev/full") && host.writeFile("/dev/full", "x"));
  std::filesystem::permissions(file, std::filesystem::perms::none);
  EXPECT_TRUE(::geteuid() == 0 || !(host.readFile(file).has_value() || host.writeFile(file, "x")));
  std::filesystem::remove_all(root);
  // What is read piece by piece does not tell its length.
  int ends[2] = {};
  const std::string piped = std::string(30000, 'b') + odd;
  EXPECT_TRUE(::pipe(ends) == 0 && ::write(ends[1], piped.data(), piped.size()) == 30005 && ::close(ends[1]) == 0);
  EXPECT_EQ(host.readFile("/dev/fd/" + std::to_string(ends[0])), piped);
  EXPECT_TRUE(host.environment("PATH") == std::getenv("PATH") && !host.environment("KILN_TEST_NONE").has_value());
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  host.printOutput("out\n");
  host.printError("“err”");
  EXPECT_EQ(testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout(), "“err”out\n");
}

}  // namespace kiln
