#include <array>
#include <string>

#include "host/real_host.h"
#include "host/standard_input.h"
#include "lsp/message_stream.h"
#include "lsp/server.h"

int main(int, char** argv) {
  kiln::RealHost host;
  kiln::Server server(host, argv[0]);
  kiln::MessageStream stream;
  std::array<char, size_t{64} * 1024> buffer;
  while (!server.isOver()) {
    // All that has arrived is read before any of it is handled: a request may be cancelled, a text changed again.
    do {
      const size_t count = kiln::readStandardInput(buffer);
      if (count == 0) return 1;
      stream.add({buffer.data(), count});
    } while (kiln::hasStandardInput());
    while (const std::optional<std::string> message = stream.next())
      server.receive(*message);
    bool hasMore = true;
    while (hasMore) {
      hasMore = server.handleNext();
      if (!hasMore) server.settle();
      for (const std::string& output : server.takeOutput())
        host.printOutput(kiln::framed(output));
    }
  }
  return server.exitStatus();
}
