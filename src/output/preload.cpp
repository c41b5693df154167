#include "output/preload.h"

#include "base/arithmetic.h"
#include "output/atari_records.h"

namespace kiln {
namespace {

void appendLoad(Image& routine, uint8_t value) {
  appendByte(routine, 0xA9);  // LDA immediate
  appendByte(routine, value);
}

void appendStore(Image& routine, uint32_t bankRegister) {
  if (bankRegister < 0x100) {
    appendByte(routine, 0x85);  // STA zero page
    appendByte(routine, bankRegister);
  } else {
    appendByte(routine, 0x8D);  // STA absolute
    appendWord(routine, bankRegister);
  }
}

void appendReturn(Image& routine) {
  appendByte(routine, 0x60);  // RTS
}

}  // namespace

void BankPreload::appendSelect(Image& image, BankValue bank) {
  const uint8_t high = highByte(bank.value);
  Image routine;
  appendLoad(routine, lowByte(bank.value));
  appendStore(routine, bankRegister(settings_, bank.kind));
  if (bank.kind == BankKind::Regc && settings_.regcRegisterHigh != 0) {
    appendLoad(routine, high);
    appendStore(routine, settings_.regcRegisterHigh);
  }
  if (bank.kind == BankKind::Plain && high != highByte_) {
    appendLoad(routine, high);
    appendStore(routine, settings_.dataBankRegister);
    highByte_ = high;
  }
  appendReturn(routine);
  appendPreloadInit(image, routine);
}

void BankPreload::appendReset(Image& image, BankKind kind) {
  Image routine;
  appendLoad(routine, 0);
  appendStore(routine, bankRegister(settings_, kind));
  if (kind == BankKind::Regc && settings_.regcRegisterHigh != 0) {
    appendStore(routine, settings_.regcRegisterHigh);
  }
  if (kind == BankKind::Plain && highByte_ != 0) {
    appendStore(routine, settings_.dataBankRegister);
    highByte_ = 0;
  }
  appendReturn(routine);
  appendPreloadInit(image, routine);
}

}  // namespace kiln
