// The symbol files in share/kiln-as, which users copy and extend.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "base/text.h"
#include "driver/home.h"
#include "host/real_host.h"
#include "source/seeds.h"
#include "support/program.h"

namespace kiln::test {
namespace {

std::string readShared(const std::string& name) {
  const std::filesystem::path root = std::filesystem::path(KILN_EXAMPLES_DIR).parent_path();
  return RealHost().readFile(root / "share/kiln-as" / name).value_or("");
}

std::map<std::string, int64_t> namesOf(const Seeds& seeds) {
  std::map<std::string, int64_t> names;
  SymbolTable table;
  enterSeeds(seeds, table);
  for (const Symbol& symbol : table.symbols())
    names.emplace(symbol.name, symbol.value);
  return names;
}

std::map<std::string, int64_t> namesIn(const std::string& file) {
  Seeds seeds;
  seeds.files = {file};
  return namesOf(seeds);
}

// Every address from the first to the last, in these steps, has a name.
void expectNamed(const std::map<std::string, int64_t>& names, int64_t first, int64_t last, int64_t step = 1) {
  std::set<int64_t> addresses;
  for (const auto& [name, address] : names)
    if (address >= first && address <= last) addresses.insert(address);
  std::set<int64_t> expected;
  for (int64_t address = first; address <= last; address += step)
    expected.insert(address);
  EXPECT_EQ(addresses, expected);
}

// A line that is no definition is skipped in silence, and of two definitions of one name the last counts.
TEST(SymbolFiles, HaveOnlyCommentsAndDifferentNames) {
  for (const char* name : {"atari.sym", "commodore.sym"}) {
    const std::string file = readShared(name);
    size_t definitions = 0;
    Fields lines(file, '\n');
    for (std::string_view line; lines.next(line);)
      definitions += line.empty() || line[0] == ';' ? 0 : 1;
    EXPECT_GT(definitions, 100U) << name;
    EXPECT_EQ(namesIn(file).size(), definitions) << name;
  }
}

TEST(SymbolFiles, ForTheAtariHaveTheBuiltInNames) {
  const std::map<std::string, int64_t> names = namesIn(readShared("atari.sym"));
  for (const auto& [name, value] : namesOf(Seeds())) {
    const auto found = names.find(name);
    ASSERT_NE(found, names.end()) << name;
    EXPECT_EQ(found->second, value) << name;
  }
}

TEST(SymbolFiles, NameWholeBlocksOfRegistersAndVectors) {
  const std::map<std::string, int64_t> atari = namesIn(readShared("atari.sym"));
  expectNamed(atari, 0x0270, 0x0287);     // paddles, joysticks and their triggers
  expectNamed(atari, 0x0340, 0x034F);     // the first channel
  expectNamed(atari, 0xD000, 0xD01F);     // GTIA
  expectNamed(atari, 0xE450, 0xE48F, 3);  // the ROM's vectors
  const std::map<std::string, int64_t> commodore = namesIn(readShared("commodore.sym"));
  expectNamed(commodore, 0xD000, 0xD02E);     // VIC-II
  expectNamed(commodore, 0xD400, 0xD41C);     // SID
  expectNamed(commodore, 0xDC00, 0xDC0F);     // CIA 1
  expectNamed(commodore, 0xDD00, 0xDD0F);     // CIA 2
  expectNamed(commodore, 0xFF81, 0xFFF5, 3);  // the KERNAL
}

// What a program of these lines at $2000 becomes with the symbol file.
std::string assembledWith(const std::string& name, const std::string& lines) {
  MemoryHost host;
  host.files = {{"names.sym", readShared(name)}, {"main.asm", " .org $2000\n" + lines}};
  EXPECT_EQ(runLine(host, "-s names.sym main.asm"), 0) << host.standardError;
  EXPECT_EQ(host.standardError.find("warning"), std::string::npos) << host.standardError;
  return hex(host.written["main.xex"]);
}

TEST(SymbolFiles, NameWhatProgramsNeed) {
  EXPECT_EQ(assembledWith("atari.sym",
                          " LDA STICK0 : LDA STRIG3 : LDA PADDL0 : STA GPRIOR\n LDA VVBLKI : LDA VVBLKD\n"
                          " STA ICCOM,X : JSR CIOV\n LDA RAMTOP\n JSR SETVBV : JMP SYSVBV : JMP XITVBV\n"),
            hex(xex({{0x2000,
                      "AD 78 02 AD 87 02 AD 70 02 8D 6F 02 AD 22 02 AD 24 02"
                      "9D 42 03 20 56 E4 A5 6A 20 5C E4 4C 5F E4 4C 62 E4"}},
                    0x2000)));
  EXPECT_EQ(assembledWith("commodore.sym",
                          " STA EXTCOL : STA SIGVOL : LDA CIAPRA\n STA (FREKZP),Y : STA FREKZP\n"
                          " JSR CHROUT : JMP GETIN\n"),
            hex(xex({{0x2000, "8D 20 D0 8D 18 D4 AD 00 DC 91 FB 85 FB 20 D2 FF 4C E4 FF"}}, 0x2000)));
}

// They would replace the built-in names of every program, were they found without -s.
TEST(SymbolFiles, AreNotFoundByThemselves) {
  MemoryHost host;
  host.files = {{"/usr/share/kiln-as/atari.sym", ""}, {"share/kiln-as/atari.sym", ""}};
  host.directories = {"/usr/share", "/usr/share/kiln-as", "share", "share/kiln-as"};
  EXPECT_EQ(findSupportDirectory(host, "/usr/bin/kiln-as"), std::nullopt);
}

}  // namespace
}  // namespace kiln::test
