#include "driver/run.h"
#include "host/real_host.h"

int main(int argc, char** argv) {
  kiln::RealHost host;
  return kiln::run(host, kiln::readArguments(argc, argv));
}
