// The memory under the OS ROM cannot be filled while a file loads: the loader is part of that ROM. So the bytes that
// belong there are loaded elsewhere, as one segment at the stage address, and the loader is made to call that address
// before it reads on. The copy stub there hides the ROM, copies, and shows the ROM again:
//
//     stage address + 0     the copy stub, 109 bytes
//                   + 109   the copy table: source, destination and length of every piece, a word each,
//                           and one entry of zeros
//                   then    the bytes of the pieces, back to back
//
// Example: 16 bytes for $C000, staged at $2000. The table at $206D-$2078 is $2079, $C000, 16, 0, 0, 0; the bytes are at
// $2079-$2088, and the loader calls $2000. The stub reads the first entry into $C0-$C5 and copies byte by byte, with
// both pointers counting up and the length counting down to 0; then it jumps back to $2011 for the next entry. The
// entry of zeros ends it, and no piece is empty, so no other entry does. X, the index into the table, has eight bits,
// which is enough for 41 pieces and the last entry; a program with more is not rejected.
#include "output/shadow.h"

#include <optional>
#include <string_view>

#include "base/format.h"
#include "output/atari_records.h"

namespace kiln {
namespace {

constexpr uint32_t stubSize = 109;
constexpr uint32_t entrySize = 6;
constexpr uint32_t readEntry = 17;  // the place in the stub that reads the next entry
constexpr uint32_t scratch = 0xC0;  // zero page: one byte for each byte of an entry
constexpr uint32_t screenRam = 0x8000;
constexpr uint32_t lastAddress = 0xFFFF;

constexpr std::string_view hideRom =
    "08 "        // PHP
    "78 "        // SEI
    "A9 00 "     // LDA #$00
    "8D 0E D4 "  // STA $D40E   NMIEN: no more interrupts of either kind, since their vectors are in the ROM
    "AD 01 D3 "  // LDA $D301   PORTB
    "29 FE "     // AND #$FE
    "8D 01 D3 "  // STA $D301
    "A2 00 ";    // LDX #$00
// In between, the entry is read: six times LDA table,X; STA; INX.
constexpr std::string_view copyPiece =
    "A5 C4 "  //       LDA $C4
    "05 C5 "  //       ORA $C5
    "F0 23 "  //       BEQ to showRom
    "A0 00 "  //       LDY #$00
    "B1 C0 "  // copy: LDA ($C0),Y
    "91 C2 "  //       STA ($C2),Y
    "E6 C0 "  //       INC $C0
    "D0 02 "  //       BNE +2
    "E6 C1 "  //       INC $C1
    "E6 C2 "  //       INC $C2
    "D0 02 "  //       BNE +2
    "E6 C3 "  //       INC $C3
    "A5 C4 "  //       LDA $C4
    "D0 02 "  //       BNE +2
    "C6 C5 "  //       DEC $C5
    "C6 C4 "  //       DEC $C4
    "A5 C4 "  //       LDA $C4
    "05 C5 "  //       ORA $C5
    "D0 E0 "  //       BNE copy
    "4C ";    //       JMP to where the entry is read
constexpr std::string_view showRom =
    "AD 01 D3 "  // LDA $D301
    "09 01 "     // ORA #$01
    "8D 01 D3 "  // STA $D301
    "A9 40 "     // LDA #$40
    "8D 0E D4 "  // STA $D40E   vertical-blank interrupts
    "28 "        // PLP
    "60 ";       // RTS

Image copyStub(uint32_t stageAddress) {
  Image stub;
  appendHexText(stub, hideRom);
  for (uint32_t i = 0; i < entrySize; ++i) {
    appendByte(stub, 0xBD);  // LDA table,X
    appendWord(stub, stageAddress + stubSize);
    appendByte(stub, 0x85);  // STA scratch + i
    appendByte(stub, scratch + i);
    appendByte(stub, 0xE8);  // INX
  }
  appendHexText(stub, copyPiece);
  appendWord(stub, stageAddress + readEntry);
  appendHexText(stub, showRom);
  return stub;
}

// Of the staging segment, what comes before the bytes of the pieces.
uint64_t leadSize(const std::vector<Piece>& pieces) { return stubSize + entrySize * (pieces.size() + 1); }

// Absent when a piece would begin past the last address. A piece that only ends past it is found later.
std::optional<Image> copyTable(const std::vector<Piece>& pieces, uint64_t firstSource) {
  Image table;
  uint64_t source = firstSource;
  for (const Piece& piece : pieces) {
    if (source > lastAddress) return std::nullopt;
    appendWord(table, static_cast<uint32_t>(source));
    appendWord(table, piece.address);
    appendWord(table, static_cast<uint32_t>(piece.bytes.size()));
    source += piece.bytes.size();
  }
  table.appendZeros(entrySize);
  return table;
}

void warnAboutScreenRam(uint32_t stageAddress, int64_t end, Console& console) {
  console.printError(
      concat({"kiln-as: warning: shadow staging segment ", dollarHex(stageAddress), "-", dollarHex(end - 1),
              " extends ", decimal(end - screenRam),
              " bytes into screen RAM at $8000. The XEX loader writes staging bytes there during load. The xl-shadow "
              "startup template clears screen RAM at boot after the staging stub finishes, so ANTIC won't read stale "
              "bytes — but tighter shadow code (`-O2` / `-O3`) would avoid the overlap entirely.\n"}));
}

}  // namespace

uint64_t stageSize(const std::vector<Piece>& pieces) {
  uint64_t size = leadSize(pieces);
  for (const Piece& piece : pieces)
    size += piece.bytes.size();
  return size;
}

bool stageShadow(Image& image, uint32_t stageAddress, const std::vector<Piece>& pieces, Console& console) {
  const int64_t size = static_cast<int64_t>(stageSize(pieces));
  const int64_t end = stageAddress + size;
  if (end > screenRam) warnAboutScreenRam(stageAddress, end, console);
  const std::optional<Image> table = copyTable(pieces, stageAddress + leadSize(pieces));
  if (!table) {
    return fail(console, {"kiln-as: shadow staging payload at ", dollarHex(stageAddress),
                          " overflows 64 KB (would extend past $FFFF). Reduce shadow-region code size or move "
                          ".shadow_stage lower.\n"});
  }
  const Image stub = copyStub(stageAddress);
  if (stub.size() != stubSize) {
    return fail(console, {"kiln-as: internal: shadow copy stub size mismatch (got ",
                          decimal(static_cast<int64_t>(stub.size())), ", expected ", decimal(stubSize), ")\n"});
  }
  if (end - 1 > lastAddress) {
    return fail(console, {"kiln-as: shadow staging payload at ", dollarHex(stageAddress), " is ", decimal(size),
                          " bytes, runs past $FFFF. Reduce shadow-region code size or pick a lower stage address.\n"});
  }
  appendRangeHeader(image, stageAddress, static_cast<uint32_t>(end - 1));
  image.append(stub);
  image.append(*table);
  for (const Piece& piece : pieces)
    appendBytes(image, piece.bytes);
  appendInitAddress(image, stageAddress);
  return true;
}

}  // namespace kiln
