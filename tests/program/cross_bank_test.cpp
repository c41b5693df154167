// Calls across banks, run on the small machine.
#include <gtest/gtest.h>

#include <algorithm>

#include "inspect/bank_windows.h"
#include "machine/machine.h"
#include "support/program.h"

namespace kiln::test {
namespace {

// A way of banking: how the program is assembled, and the machine that it runs on.
struct Banking {
  std::string options;
  std::vector<BankWindow> windows;
  std::string layout = "";
  std::string before = "";   // source before the first bank
  std::string between = "";  // source between two banks
};

const Banking plain{"-b -code-reg 82 -data-reg 83 -code-window 4000-5FFF", {{0x4000, 0x5FFF, 0x82}}};
const Banking absolute{"-b -code-reg D500 -data-reg D501 -code-window 4000-5FFF", {{0x4000, 0x5FFF, 0xD500}}};
// An origin inside the window takes a number in the file, so that the numbers there differ from those of the banks.
const Banking split{"-b --split-bank -code-reg 82 -data-reg 83 -code-window 4000-7FFF --data-window 6000:7FFF",
                    {{0x4000, 0x5FFF, 0x82}, {0x6000, 0x7FFF, 0x83}},
                    "",
                    "    .org $6000\n    .byte 9\n",
                    "    .org $5000\n    .byte 8\n    .org $6000\n    .byte 7\n"};
Banking regc(const std::string& registers, const BankWindow& window) {
  return {
      "-L main.lnk",
      {window},
      "[banking]\nwindow = $4000-$7FFF\nregisters = $82, $83\nregcwindow = $4000-$7FFF\nregcreg = " + registers + "\n",
      "",
      "    .org $5000\n    .byte 8\n"};
}
const Banking regcPair = regc("$D510-$D511", {0x4000, 0x7FFF, 0xD510, 0xD511});
const Banking regcSingle = regc("$D510", {0x4000, 0x7FFF, 0xD510});

Banking manyBanks(int count = 300) {
  Banking banking = plain;
  banking.windows = {{0x4000, 0x5FFF, 0x82, 0x83}};
  for (int i = 0; i < count; ++i)
    banking.before += "    .bank x" + std::to_string(i) + "\n    NOP\n";
  return banking;
}

struct Built {
  Machine machine;
  std::string listing;
};

// The program assembled and loaded, every bank in its place.
Built build(const Banking& banking, const std::string& source) {
  MemoryHost host;
  host.files = {{"main.asm", source}, {"main.lnk", banking.layout}};
  EXPECT_EQ(runLine(host, "main.asm -l main.lst " + banking.options), 0) << host.standardError;
  EXPECT_EQ(host.standardError.find("kiln-as: assembled"), 0U) << host.standardError;
  Built built;
  built.machine.windows = banking.windows;
  EXPECT_TRUE(built.machine.loadXex(host.written["main.xex"])) << built.machine.error;
  built.listing = host.written["main.lst"];
  return built;
}

// The machine after the program has run; its cycles are those of the run.
Machine runs(const Banking& banking, const std::string& source) {
  Machine machine = build(banking, source).machine;
  machine.cycles = 0;
  EXPECT_TRUE(machine.run()) << machine.error;
  return machine;
}

// Calls first in bank one, which calls second in bank two. Both note how they are entered, and main how they return.
std::string nestedCalls(const Banking& banking) {
  return "    .org $2000\n"
         "main: LDA #$11 : PHA : LDX #$22 : LDY #$33 : LDA #$CB : PHA : LDA #$44 : PLP\n"
         "    jsr FIRST ; in another letter case\n"
         "    PHP : STA $0610 : STX $0611 : STY $0612 : PLA : STA $0613 : TSX : STX $0614 : PLA : STA $0615\n"
         "    CLD : RTS\n" +
         banking.before +
         "    .bank one\n"
         "first: PHP : STA $0600 : STX $0601 : STY $0602 : PLA : STA $0603 : TSX : STX $0604 : LDA 3,SP : STA $0605\n"
         "    JSR second : LDA mark1 : STA $0606\n"
         "    LDX #$AA : LDY #$BB : LDA #$49 : PHA : LDA #$CC : PLP : RTS\n"
         "mark1: .byte 1\n" +
         banking.between +
         "    .bank two\n"
         "second: LDA mark2 : STA $0607 : TSX : STX $0608 : RTS\n"
         "mark2: .byte 2\n";
}

// From $0600: A, X, Y, P and S on entry to first, the byte that main has pushed, both marks, and S in second. From
// $0610: A, X, Y, P and S back in main, and its byte again. P is as PHP stores it, with bits 4 and 5 set.
const std::string expectedNotes = bytes("44 22 33 FB FA 11 01 02 F8 00 00 00 00 00 00 00 CC AA BB 79 FC 11");

TEST(CrossBankCalls, ChangeNothingEvenWhereCallsInterruptThem) {
  const std::string handler =
      "    .bank three\ntick: LDA #3 : JSR tock : INC $0630 : RTS\n    .bank four\ntock: JMP count\n"
      "    .bank five\ncount: LDX #9 : INC $0631 : RTS\n"
      "    .org $3000\n"
      "handler: PHA : TXA : PHA : TYA : PHA : LDA __bank_current : PHA : JSR tick : JSR tock\n"
      "    PLA : CMP __bank_current : BEQ .same : INC $0632\n"
      ".same: PLA : TAY : PLA : TAX : PLA : RTI\n";
  for (const Banking& banking : {plain, absolute, split, regcPair, regcSingle, manyBanks()}) {
    SCOPED_TRACE(banking.options + banking.layout);
    Machine machine = build(banking, nestedCalls(banking) + handler).machine;
    machine.onWrite = [](uint16_t address, uint8_t) { EXPECT_NE(address, 0); };  // a register that is none
    int interrupts = 0;
    for (machine.beginCall(0x2000); !machine.returned(); ++interrupts) {
      Machine hit = machine;
      hit.nmi(0x3000);
      ASSERT_TRUE(hit.finishCall()) << hit.error << ", interrupt " << interrupts;
      ASSERT_EQ(hit.memory(0x0600, 0x16), expectedNotes) << "interrupt " << interrupts;
      ASSERT_EQ(hit.memory(0x0630, 3), std::string("\1\2\0", 3)) << "interrupt " << interrupts;
      ASSERT_EQ(hit.s, 0xFF);
      for (const BankWindow& window : banking.windows)
        ASSERT_EQ(hit.peek(window.registerLow) + hit.peek(window.registerHigh), 0);
      ASSERT_TRUE(machine.step()) << machine.error;
    }
    EXPECT_EQ(machine.memory(0x0600, 0x16), expectedNotes);
    EXPECT_GT(interrupts, 200);
  }
}

// From now on only the stack, the notes at $0600, the register and the data of the calls, of which the program keeps
// the address at $2F00, may be written to.
void expectWritesToOwnDataOnly(Machine& machine) {
  const uint16_t data = machine.peekWord(0x2F00);
  machine.onWrite = [data](uint16_t address, uint8_t) {
    const bool allowed = (address >= 0x0100 && address < 0x0200) || (address >= data && address < data + 386) ||
                         (address >= 0x0600 && address < 0x0800) || address == 0x82;
    EXPECT_TRUE(allowed) << address;
  };
}

// Three banks that call each other in a circle, as deep as $0620 says. Each writes down its bank on the way back.
constexpr const char* circle =
    "    .org $2000\nmain: JSR f1 : RTS\n    .org $2F00\n    .word __bank_current\n"
    "    .bank one\nf1: DEC $0620 : BEQ .out : JSR f2 : LDA m1 : JSR note\n.out: RTS\nm1: .byte 1\n"
    "    .bank two\nf2: DEC $0620 : BEQ .out : JSR f3 : LDA m2 : JSR note\n.out: RTS\nm2: .byte 2\n"
    "    .bank three\nf3: DEC $0620 : BEQ .out : JSR f1 : LDA m3 : JSR note\n.out: RTS\nm3: .byte 3\n"
    "    .org $2F80\nnote: LDX $0621 : STA $0700,X : INC $0621 : RTS\n";

TEST(CrossBankCalls, NestAndLoseOnlyTheOldestReturnsWhenTheyAreTooDeep) {
  Machine machine = build(plain, circle).machine;
  machine.poke(0x0620, 65);
  ASSERT_TRUE(machine.run()) << machine.error;
  EXPECT_EQ(machine.peek(0x0621), 64);
  for (int level = 64; level >= 1; --level)
    EXPECT_EQ(machine.peek(0x0740 - level), (level - 1) % 3 + 1);

  expectWritesToOwnDataOnly(machine);
  machine.poke(0x0620, 0);  // 256 levels: more than the ring and the stack hold
  (void)machine.run();
}

TEST(CrossBankJumps, AreTailCalls) {
  const std::string source =
      "    .org $2000\nmain: JSR a1 : STA $0600 : LDA $82 : STA $0601 : RTS\nback: RTS\n"
      "    .bank a\na1: JSR a2 : CLC : ADC m1 : RTS\na2: JMP b1\nm1: .byte 1\n"
      "    .bank b\nb1: LDA m2 : JMP c1+1\nm2: .byte 2\n"
      "    .bank c\nc1: RTS\n    JMP a3\nc2: RTS\nalias = c2\n"
      "    .bank d\nd1: RTS\n"
      "    .bank e\na3: PHA : JSR alias : PLA : ADC #0 : JMP back\n";
  EXPECT_EQ(runs(plain, source).memory(0x0600, 2), std::string("\3\0", 2));
}

TEST(CrossBankJumps, MayGoOnForever) {
  const std::string source =
      "    .org $2000\nmain: LDX #$FF : TXS\n    JMP one\n    .org $2F00\n    .word __bank_current\n"
      "    .bank one\none: INC $0600 : BNE .next : INC $0601\n.next: JMP two\n"
      "    .bank two\ntwo: JMP one\n";
  Machine machine = build(plain, source).machine;
  const int depth = machine.peekWord(0x2F00) + 1;
  const uint8_t before = machine.peek(depth);
  expectWritesToOwnDataOnly(machine);
  machine.beginCall(0x2000);
  while (machine.peekWord(0x0600) < 5000)
    ASSERT_TRUE(machine.step()) << machine.error;
  EXPECT_EQ(machine.s, 0xFF);
  EXPECT_EQ(machine.peek(depth), before + 1);
}

// The line of the listing that has this part, from a column on; empty when there is none.
std::string listed(const std::string& listing, const std::string& part, size_t column, size_t count = 999) {
  const size_t begin = listing.rfind('\n', listing.find(part)) + 1;
  const std::string line = listing.substr(begin, listing.find('\n', begin) - begin);
  return line.substr(std::min(column, line.size()), count);
}

// The address of the first generated line.
std::string stagedAt(const Banking& banking, const std::string& source) {
  return listed(build(banking, source).listing, ">_kxb_0:", 2, 4);
}

// Cycles of a call, and of a jump after it, beyond those of direct ones; and bytes.
TEST(CrossBankCalls, CostWhatTheDocumentsSay) {
  const std::string code = "    .org $2000\nmain: JSR f\n    RTS\n", one = "    .bank one\nf: ";
  const Machine call = runs(plain, code + one + "RTS\n");
  const Machine jump = runs(plain, code + one + "JMP g\n    .bank two\ng: RTS\n");
  EXPECT_EQ(call.cycles, 6 + 6 + 6 + 278);
  EXPECT_EQ(jump.cycles, 6 + 3 + 6 + 6 + 278 + 128);
  const auto sizeOfMain = [](const Machine& machine) {
    return std::ranges::find(machine.segments, 0x2000, &Machine::Segment::first)->last - 0x2000 + 1;
  };
  EXPECT_EQ(sizeOfMain(call), 4 + 17 + 138 + 386);
  EXPECT_EQ(sizeOfMain(jump), 4 + 2 * 17 + 138 + 386);
  // The second register is written to from bank 256 on.
  EXPECT_EQ(sizeOfMain(build(manyBanks(254), code + manyBanks(254).before + one + "RTS\n").machine), sizeOfMain(call));
  // Generated code goes where there is room for all of it, and elsewhere when a byte is missing.
  for (const Banking& banking : {plain, absolute, manyBanks()}) {
    const std::string rest = banking.before + one + "RTS\n";
    const int end = 0x2000 + sizeOfMain(build(banking, code + rest).machine);
    for (const int room : {end, end - 1}) {
      const std::string next = "    .org $9000\n    NOP\n    .org " + std::to_string(room) + "\n    NOP\n";
      EXPECT_EQ(stagedAt(banking, code + next + rest), room == end ? "2004" : "9001");
    }
  }
}

TEST(CrossBankCalls, HaveNothingButTheirOperandChanged) {
  const std::string source =
      "    .org $2000\n"
      "main: JSR far : jsr\tfar : LDA #1 ; two of them\n"
      "    .string \"x : JMP far+3\n    .string \"\"\"x : JMP far+3\n"
      "    JSR near : JMP (vector) : JSR $4000 : JSR near2\n"
      "near: RTS\nvector: .word far\nnear2 = near\n"
      "    .bank one\nfar: NOP\n.deep: RTS\n    JSR far : JMP .deep : JSR near\n"
      "    .bank two\nother: JSR far.deep\n    RTS\n";
  const std::string listing = build(plain, source).listing;
  // The listed line that has a part, after its columns of addresses and bytes.
  for (const auto& [part, line] : std::initializer_list<std::pair<std::string, std::string>>{
           // clang-format off
      {"two of",   "main: JSR _kxb_0 : jsr\t_kxb_0 : LDA #1 ; two of them ; xbank"},
      {".string",  "    .string \"x : JMP _kxb_1 : \" ; xbank"},
      {"\"\"\"x",  "    .string \"\"\"x : JMP _kxb_1 : \" ; xbank"},
      {"(vector)", "    JSR near : JMP (vector) : JSR $4000 : JSR near2"},
      {".deep : ", "    JSR far : JMP .deep : JSR near"},
      {"other",    "other: JSR _kxb_2 ; xbank"},
      {"STX $",    "    STX $82 ; xbank"},
           // clang-format on
       })
    EXPECT_EQ(listed(listing, part, 21), line);
  // Nothing to switch with, nothing to stage.
  const Banking withoutRegister{"-code-window 4000-5FFF", {}};
  EXPECT_EQ(build(withoutRegister, source).listing.find("xbank"), std::string::npos);
}

TEST(CrossBankCalls, GoThroughCodeInMainMemory) {
  const std::string banks = ".bank one\nf: RTS\n.bank two\nJSR f\n";
  const std::pair<std::string, std::string> rows[] = {
      // clang-format off
      {".org $2000\nJSR f\n__bank_stage: NOP\n.org $3000\n.space 99\n",                              "2004"},
      {".org $2000\nJSR f\nend:\n.org $3000\n.space 2\n",                                            "2003"},
      {".org $2000\n.space 60 : .space 60\n.org $3000\n.space 99\n",                                 "2078"},
      {".org $2000\nJSR f\n.org $3000\n.space 99\nend:\n",                                           "3063"},
      // There is no room after the larger ones: other code follows, or the window.
      {".org $2000\n.space 99\n.org $2200\nJSR f\n.org $3F00\n.space 64\n",                          "2203"},
      {"",                                                                                           "A000"},
      {".shadow_ranges $2000-$20FF\n.shadow_stage $3000\n.org $2000\n.space 256\n.org $9000\nNOP\n", "9001"},
      // There is no room after a line that goes on elsewhere.
      {".org $2000\nNOP : .bank zero\n",                                                             "A000"},
      // clang-format on
  };
  for (const auto& [source, address] : rows)
    EXPECT_EQ(stagedAt(plain, source + banks), address) << source;
  // A cloaked segment that ends close before it does not take it in.
  const Banking flat{"-code-reg 82 -code-window 4000-5FFF", {}};
  const Built cloaked = build(flat, banks + ".cloaked_segment $9FFE\nNOP\n");
  EXPECT_EQ(std::ranges::count(cloaked.machine.segments, 0xA000, &Machine::Segment::first), 1);
  const Banking apart{"-b --split-bank -code-reg 82 -data-reg 83 -code-window 4000-5FFF --data-window 6000:7FFF", {}};
  EXPECT_EQ(stagedAt(apart, ".org $2000\nJSR f\n.org $6000\n.space 99\n" + banks), "2003");
  expectErrors(".bank one\n__bank_stage:\nf: RTS\n.bank two\nJSR f\n",
               {"main.asm:2: '__bank_stage' must lie in main memory"}, {}, plain.options);
  // Without a call it may lie anywhere.
  build(plain, ".bank one\n__bank_stage: RTS\n");
}

TEST(CrossBankCalls, SettleTogetherWithLongBranchesAndRegions) {
  const std::string source =
      "    .code_regions $2000-$20FF,$3000-$3FFF\n    .org $2000\n"
      "main: LDA #0\n    BEQ far\n    .space 200\n    JMP far\n    .space 150\nfar: JSR f : STA $0600 : RTS\n"
      "    .bank one\nf: JMP f2\n    .space 200\nf2: LDX #0\n    BEQ g\n    .bank two\ng: LDA m : RTS\nm: .byte 42\n";
  EXPECT_EQ(runs(plain, source).peek(0x0600), 42);
}

// As a debugger or an emulator is to be set up: "LOW-HIGH by REGISTER, HIGH_REGISTER", without prefixes.
std::string windowsOf(const Banking& banking, const std::string& source) {
  MemoryHost host;
  host.files = {{"main.asm", source}, {"main.lnk", banking.layout}};
  Options options;
  EXPECT_FALSE(scanArguments(words("main.asm " + banking.options), host, options).has_value());
  const std::vector<std::string> programPath = {"kiln-check"};
  const auto program = assembleProgram(host, programPath, std::move(options));
  EXPECT_TRUE(program->isAssembled) << program->error;
  std::string text;
  for (const SwitchedWindow& window : switchedWindows(*program, placeStatements(*program))) {
    const auto hex = [](uint32_t address) { return dollarHex(address).substr(1); };
    text += hex(window.range.first) + "-" + hex(window.range.last) + " by " + hex(window.lowRegister) + ", " +
            hex(window.highRegister) + "\n";
  }
  return text;
}

TEST(BankWindows, AreThoseOfTheBanksThatTheProgramHas) {
  const std::string bank = "    .org $2000\n    NOP\n    .bank one\n    NOP\n";
  const std::string dataHalf = bank + "    .org $6000\n    .byte 1\n";
  EXPECT_EQ(windowsOf({"-o main.xex", {}}, bank), "");
  EXPECT_EQ(windowsOf(absolute, "    .org $2000\n    NOP\n"), "");
  EXPECT_EQ(windowsOf({"-b -code-reg 82 -data-reg 83 -code-window 4000-7FFF", {}}, bank), "4000-7FFF by 0082, 0083\n");
  EXPECT_EQ(windowsOf(absolute, bank), "4000-5FFF by D500, D501\n");
  EXPECT_EQ(windowsOf(split, bank), "4000-5FFF by 0082, 0000\n");
  EXPECT_EQ(windowsOf(split, dataHalf), "4000-5FFF by 0082, 0000\n6000-7FFF by 0083, 0000\n");
  EXPECT_EQ(windowsOf(regcPair, bank), "4000-7FFF by D510, D511\n");
}

}  // namespace
}  // namespace kiln::test
