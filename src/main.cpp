#include <string>
#include <vector>

#include "driver/run.h"
#include "host/real_host.h"

int main(int argc, char** argv) {
  kiln::RealHost host;
  const std::vector<std::string> arguments(argv, argv + argc);
  return kiln::run(host, arguments);
}
