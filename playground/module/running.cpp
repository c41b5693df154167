// The half of the module that runs programs: an Atari, its picture and its registers.
#include <array>
#include <bitset>
#include <memory>
#include <string>

#include "lsp/json.h"
#include "machine/atari.h"
#include "machine/palette.h"
#include "reply.h"

namespace kiln::playground {
namespace {

enum class Stop : int { Frame, Breakpoint, Failure };

struct Running {
  std::unique_ptr<Atari> atari;
  std::bitset<65536> breakpoints;
  std::array<uint32_t, Screen::width* Screen::height> picture = {};  // R, G, B and A, byte by byte
  std::string state;
};

Running& running() {
  static Running state;
  return state;
}

// Leaves an instruction that has a breakpoint.
bool stepOne(Atari& atari) {
  const uint32_t before = atari.instructions;
  while (atari.instructions == before) {
    if (!atari.advance()) return false;
  }
  return true;
}

Stop goOn(Atari& atari) {
  const auto& breakpoints = running().breakpoints;
  if (breakpoints.none()) return atari.runFrame() ? Stop::Frame : Stop::Failure;
  if (!stepOne(atari)) return Stop::Failure;
  while (!atari.isFrameOver()) {
    if (breakpoints[atari.machine.pc]) return Stop::Breakpoint;
    if (!atari.advance()) return Stop::Failure;
  }
  return Stop::Frame;
}

void draw(const Screen& screen) {
  static const auto palette = makePalette();
  for (size_t i = 0; i < screen.colours.size(); ++i) {
    const uint32_t colour = palette[screen.colours[i]];
    running().picture[i] = 0xFF000000 | (colour & 0xFF) << 16 | (colour & 0xFF00) | colour >> 16;
  }
}

}  // namespace
}  // namespace kiln::playground

using namespace kiln;
using namespace kiln::playground;

extern "C" {

// Loads a program into a 130XE, or into a machine whose windows show its banks: the first address, the last one, the
// register of the low byte and that of the high byte or 0, window by window. The state says whether that fails.
EMSCRIPTEN_KEEPALIVE void loadProgram(const char* bytes, size_t size, const uint16_t* windows, size_t windowCount) {
  running().atari = std::make_unique<Atari>();
  Machine& machine = running().atari->machine;
  for (size_t i = 0; i < windowCount; ++i, windows += 4)
    machine.windows.push_back({windows[0], windows[1], windows[2], windows[3]});
  machine.xeBanks = windowCount == 0;
  running().atari->load({bytes, size});
}

EMSCRIPTEN_KEEPALIVE void setInput(int stick, bool trigger, int consoleKeys) {
  if (running().atari == nullptr) return;
  running().atari->stick = static_cast<uint8_t>(stick);
  running().atari->trigger = trigger;
  running().atari->consoleKeys = static_cast<uint8_t>(consoleKeys);
}

EMSCRIPTEN_KEEPALIVE void pressKey(int code) {
  if (running().atari != nullptr) running().atari->pressKey(static_cast<uint8_t>(code));
}

EMSCRIPTEN_KEEPALIVE void setBreakpoints(const uint16_t* addresses, size_t count) {
  running().breakpoints.reset();
  for (size_t i = 0; i < count; ++i)
    running().breakpoints.set(addresses[i]);
}

// Runs to the end of the frame or to a breakpoint. 0: the frame is over, 1: a breakpoint, 2: the processor stopped.
EMSCRIPTEN_KEEPALIVE int runFrame() {
  return static_cast<int>(running().atari == nullptr ? Stop::Failure : goOn(*running().atari));
}

// False when the processor stops.
EMSCRIPTEN_KEEPALIVE bool stepInstruction() { return running().atari != nullptr && stepOne(*running().atari); }

EMSCRIPTEN_KEEPALIVE void picture(Reply* reply) {
  if (running().atari != nullptr) draw(running().atari->screen);
  *reply = {running().picture.data(), running().picture.size() * sizeof(uint32_t)};
}

// The registers that sound depends on, AUDF1 to AUDCTL.
EMSCRIPTEN_KEEPALIVE void soundRegisters(Reply* reply) {
  constexpr size_t count = 9;
  if (running().atari == nullptr) return;
  *reply = {running().atari->chips.pokey.data(), count};
}

EMSCRIPTEN_KEEPALIVE void processorState(Reply* reply) {
  if (running().atari == nullptr) return;
  const Machine& machine = running().atari->machine;
  running().state = dumpJson({{"a", machine.a},
                              {"x", machine.x},
                              {"y", machine.y},
                              {"s", machine.s},
                              {"p", machine.p},
                              {"pc", machine.pc},
                              {"hasReturned", machine.returned()},
                              {"error", machine.error}});
  *reply = Reply::of(running().state);
}

}  // extern "C"
