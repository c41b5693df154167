#include "output/preload.h"

#include "base/arithmetic.h"

namespace kiln {
namespace {

void appendLoad(Image& routine, uint8_t value) {
  appendByte(routine, 0xA9);  // LDA immediate
  appendByte(routine, value);
}

void appendReturn(Image& routine) {
  appendByte(routine, 0x60);  // RTS
}

}  // namespace

void BankPreload::appendSelect(Image& image, BankValue bank) {
  const uint8_t high = highByte(bank.value);
  Image routine;
  appendLoad(routine, lowByte(bank.value));
  appendStoreToRegister(routine, registerFor(bank.kind));
  if (bank.kind == BankKind::Regc && settings_.regcRegisterHigh != 0) {
    appendLoad(routine, high);
    appendStoreToRegister(routine, settings_.regcRegisterHigh);
  }
  if (bank.kind == BankKind::Plain && high != highByte_) {
    appendLoad(routine, high);
    appendStoreToRegister(routine, settings_.dataBankRegister);
    highByte_ = high;
  }
  appendReturn(routine);
  appendPreloadInit(image, routine);
}

void BankPreload::appendReset(Image& image, BankKind kind) {
  Image routine;
  appendLoad(routine, 0);
  appendStoreToRegister(routine, registerFor(kind));
  if (kind == BankKind::Regc && settings_.regcRegisterHigh != 0) {
    appendStoreToRegister(routine, settings_.regcRegisterHigh);
  }
  if (kind == BankKind::Plain && highByte_ != 0) {
    appendStoreToRegister(routine, settings_.dataBankRegister);
    highByte_ = 0;
  }
  appendReturn(routine);
  appendPreloadInit(image, routine);
}

uint32_t BankPreload::registerFor(BankKind kind) const {
  if (kind == BankKind::Regc) return settings_.regcRegisterLow;
  return kind == BankKind::DataHalf ? settings_.dataBankRegister : settings_.codeBankRegister;
}

}  // namespace kiln
