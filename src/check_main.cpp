#include "host/real_host.h"
#include "inspect/check_run.h"

int main(int argc, char** argv) {
  kiln::RealHost host;
  return kiln::runCheck(host, kiln::readArguments(argc, argv), kiln::RealHost::isOnTerminal());
}
