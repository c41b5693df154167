#include <string>
#include <vector>

#include "host/real_host.h"
#include "inspect/check_run.h"

int main(int argc, char** argv) {
  kiln::RealHost host;
  const std::vector<std::string> arguments(argv, argv + argc);
  return kiln::runCheck(host, arguments, kiln::RealHost::isOnTerminal());
}
