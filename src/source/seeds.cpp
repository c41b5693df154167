#include "source/seeds.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "base/hex.h"
#include "base/text.h"
#include "base/utf8.h"

namespace kiln {
namespace {

struct Equate {
  std::string_view name;
  uint16_t value;
};

// The Atari OS and hardware. Some addresses have two names, one for reading and one for writing.
// clang-format off
constexpr std::array<Equate, 147> equates = {{
    {"LINZBS", 0x00}, {"CASINI", 0x02}, {"RAMLO", 0x04}, {"TRAMSZ", 0x06}, {"TSTDAT", 0x07}, {"WARMST", 0x08},
    {"BOOTQ", 0x09}, {"DOSVEC", 0x0A}, {"DOSINI", 0x0C}, {"APPMHI", 0x0E}, {"POKMSK", 0x10}, {"BRKKEY", 0x11},
    {"RTCLOK", 0x12}, {"BUFADR", 0x15}, {"ICCOMT", 0x17}, {"DTEFIL", 0x1A}, {"ICCMD", 0x1B}, {"DTEFLI", 0x1C},
    {"LBUFF", 0x1D}, {"SSKCTL", 0x4E}, {"VDSLST", 0x0200}, {"VPRCED", 0x0202}, {"VINTER", 0x0204}, {"VBREAK", 0x0206},
    {"VKEYBD", 0x0208}, {"VSERIN", 0x020A}, {"VSEROC", 0x020C}, {"VTIMR1", 0x0210}, {"VTIMR2", 0x0212},
    {"VTIMR4", 0x0214}, {"VIMIRQ", 0x0216}, {"CDTMV1", 0x0218}, {"CDTMV2", 0x021A}, {"CDTMV3", 0x021C},
    {"CDTMV4", 0x021E}, {"CDTMV5", 0x0220}, {"SDMCTL", 0x022F}, {"SDLSTL", 0x0230}, {"SDLSTH", 0x0231},
    {"LPENH", 0x0234}, {"LPENV", 0x0235}, {"TXTROW", 0x0290}, {"TXTCOL", 0x0291}, {"DINDEX", 0x57}, {"SAVMSC", 0x58},
    {"OLDROW", 0x5A}, {"OLDCOL", 0x5B}, {"OLDCHR", 0x5D}, {"OLDADR", 0x5E}, {"ROWCRS", 0x54}, {"COLCRS", 0x55},
    {"LMARGN", 0x52}, {"RMARGN", 0x53}, {"LOGCOL", 0x63}, {"ATACHR", 0x02FB}, {"CH", 0x02FC}, {"FILDAT", 0x02FD},
    {"DSPFLG", 0x02FE}, {"SSFLAG", 0x02FF}, {"PCOLR0", 0x02C0}, {"PCOLR1", 0x02C1}, {"PCOLR2", 0x02C2},
    {"PCOLR3", 0x02C3}, {"COLOR0", 0x02C4}, {"COLOR1", 0x02C5}, {"COLOR2", 0x02C6}, {"COLOR3", 0x02C7},
    {"COLOR4", 0x02C8}, {"COLPF0", 0xD016}, {"COLPF1", 0xD017}, {"COLPF2", 0xD018}, {"COLPF3", 0xD019},
    {"COLBK", 0xD01A}, {"COLPM0", 0xD012}, {"COLPM1", 0xD013}, {"COLPM2", 0xD014}, {"COLPM3", 0xD015},
    {"HPOSP0", 0xD000}, {"HPOSP1", 0xD001}, {"HPOSP2", 0xD002}, {"HPOSP3", 0xD003}, {"HPOSM0", 0xD004},
    {"HPOSM1", 0xD005}, {"HPOSM2", 0xD006}, {"HPOSM3", 0xD007}, {"SIZEP0", 0xD008}, {"SIZEP1", 0xD009},
    {"SIZEP2", 0xD00A}, {"SIZEP3", 0xD00B}, {"SIZEM", 0xD00C}, {"GRAFP0", 0xD00D}, {"GRAFP1", 0xD00E},
    {"GRAFP2", 0xD00F}, {"GRAFP3", 0xD010}, {"GRAFM", 0xD011}, {"GRACTL", 0xD01D}, {"HITCLR", 0xD01E},
    {"CONSOL", 0xD01F}, {"PRIOR", 0xD01B}, {"AUDF1", 0xD200}, {"AUDC1", 0xD201}, {"AUDF2", 0xD202}, {"AUDC2", 0xD203},
    {"AUDF3", 0xD204}, {"AUDC3", 0xD205}, {"AUDF4", 0xD206}, {"AUDC4", 0xD207}, {"AUDCTL", 0xD208},
    {"STIMER", 0xD209}, {"SKREST", 0xD20A}, {"POTGO", 0xD20B}, {"SEROUT", 0xD20D}, {"IRQEN", 0xD20E},
    {"SKCTL", 0xD20F}, {"SERIN", 0xD20D}, {"IRQST", 0xD20E}, {"SKSTAT", 0xD20F}, {"KBCODE", 0xD209},
    {"RANDOM", 0xD20A}, {"DMACTL", 0xD400}, {"CHACTL", 0xD401}, {"DLISTL", 0xD402}, {"DLISTH", 0xD403},
    {"HSCROL", 0xD404}, {"VSCROL", 0xD405}, {"PMBASE", 0xD407}, {"CHBASE", 0xD409}, {"WSYNC", 0xD40A},
    {"VCOUNT", 0xD40B}, {"PENH", 0xD40C}, {"PENV", 0xD40D}, {"NMIEN", 0xD40E}, {"NMIST", 0xD40F}, {"NMIRES", 0xD40F},
    {"PORTA", 0xD300}, {"PORTB", 0xD301}, {"PACTL", 0xD302}, {"PBCTL", 0xD303}, {"RUNAD", 0x02E0}, {"INITAD", 0x02E2},
    {"CHBAS", 0x02F4}, {"ATRACT", 0x4D}, {"FR0", 0xD4}, {"FR1", 0xE0}, {"CIX", 0xF2}, {"INBUFF", 0xF3},
    {"FLPTR", 0xFC},
}};
// clang-format on

// The length of "NAME = $1234", a line end and a short comment.
constexpr size_t usualDefinition = 16;

void enterSeed(std::string_view name, uint32_t value, SymbolTable& symbols) {
  Symbol& symbol = symbols.enter(HashedName(name)).symbol;
  symbol.value = value;
  symbol.seed = 1;
}

// Also removes the carriage return of a Windows line end.
std::string_view trimLine(std::string_view text) {
  const auto isCut = [](char c) { return isBlank(c) || c == '\r'; };
  while (!text.empty() && isCut(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && isCut(text.back()))
    text.remove_suffix(1);
  return text;
}

// Ignores all lines but "name = $hex".
void readDefinition(std::string_view line, SymbolTable& symbols) {
  line = line.substr(0, line.find(';'));
  const size_t equals = line.find('=');
  if (equals == std::string_view::npos) return;
  std::string_view wording = trimLine(line.substr(equals + 1));
  if (wording.size() < 2 || wording[0] != '$' || !isHexDigit(wording[1])) return;
  wording.remove_prefix(1);
  enterSeed(trimLine(line.substr(0, equals)), static_cast<uint32_t>(takeHex(wording)), symbols);
}

}  // namespace

Seeds loadSeeds(const FileReader& files, const std::vector<std::string>& paths) {
  Seeds seeds;
  for (const std::string& path : paths) {
    std::optional<std::string> text = files.readFile(path);
    if (text.has_value() && isUtf8(*text)) seeds.files.push_back(seeds.texts.own(std::move(*text)));
  }
  return seeds;
}

void enterSeeds(const Seeds& seeds, SymbolTable& symbols) {
  size_t expectedCount = equates.size();
  for (std::string_view text : seeds.files)
    expectedCount += text.size() / usualDefinition;
  symbols.reserve(expectedCount);
  for (std::string_view text : seeds.files) {
    Fields lines(text, '\n');
    std::string_view line;
    while (lines.next(line))
      readDefinition(line, symbols);
  }
  if (!symbols.symbols().empty()) return;
  for (const Equate& equate : equates)
    enterSeed(equate.name, equate.value, symbols);
}

bool isBuiltInName(std::string_view name) {
  return std::any_of(equates.begin(), equates.end(),
                     [name](const Equate& equate) { return equalIgnoringCase(equate.name, name); });
}

}  // namespace kiln
