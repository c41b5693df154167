#include "driver/settings.h"

#include "driver/home.h"
#include "layout/layout_parser.h"
#include "source/literals.h"
#include "source/seeds.h"

namespace kiln {
namespace {

// A symbol file from the command line replaces all those of the toolchain.
std::vector<std::string> chooseSymbolFiles(const Host& host, std::span<const std::string> arguments,
                                           const Options& options) {
  if (options.symbolFile.has_value()) return {*options.symbolFile};
  const std::optional<std::string> directory = findSupportDirectory(host, arguments.empty() ? "" : arguments.front());
  return directory.has_value() ? listSymbolFiles(host, *directory) : std::vector<std::string>{};
}

void applyOptions(const Options& options, BankedSettings& banking) {
  banking.codeBankRegister = options.codeRegister;
  banking.dataBankRegister = options.dataRegister;
  if (options.codeWindow.end != 0) {
    banking.bankWindowLow = options.codeWindow.start;
    banking.bankWindowHigh = options.codeWindow.end;
  }
  if (options.dataWindow.end != 0) {
    banking.dataWindowLow = options.dataWindow.start;
    banking.dataWindowHigh = options.dataWindow.end;
  }
  banking.splitBank = options.shortSplit || options.longSplit;
  if (options.longSplit) {
    banking.dataWindowLow = options.splitDataWindow.start;
    banking.dataWindowHigh = options.splitDataWindow.end;
  }
}

void applyLayout(const AsLayout& layout, BankedSettings& banking) {
  banking.bankWindowLow = layout.codeWindowLo;
  banking.bankWindowHigh = layout.codeWindowHi;
  if (layout.mainRegion.size() > 1) {
    banking.mainRegionLow = layout.mainRegion.front();
    banking.mainRegionHigh = layout.mainRegion.back();
  }
  if (layout.codeReg != 0) banking.codeBankRegister = layout.codeReg;
  if (layout.dataReg != 0) banking.dataBankRegister = layout.dataReg;
  if (layout.codeWindowSplit) {
    banking.splitBank = true;
    banking.dataWindowLow = layout.dataWindowLo;
    banking.dataWindowHigh = layout.dataWindowHi;
  }
  if (layout.hasRegc) {
    banking.regcWindowLow = layout.regcWindowLo;
    banking.regcWindowHigh = layout.regcWindowHi;
    banking.regcRegisterLow = layout.regcRegLo;
    banking.regcRegisterHigh = layout.regcRegHi;
  }
}

}  // namespace

std::string settle(const Host& host, std::span<const std::string> arguments, Options& options, Settings& settings) {
  settings.verbose = options.verbose;
  settings.seeds = loadSeeds(host, chooseSymbolFiles(host, arguments, options));
  applyOptions(options, settings.banking);
  if (options.layout.has_value()) {
    const AsLayout layout = loadLayout(host, *options.layout);
    if (!layout.error.empty()) return layout.error;
    if (layout.hasBanking) {
      applyLayout(layout, settings.banking);
      options.banked = true;
    }
  }
  for (const auto& [name, value] : options.defines)
    settings.defines.push_back({name, parseDefinition(value)});
  return "";
}

}  // namespace kiln
