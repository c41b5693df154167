#include <array>
#include <string>

#include "host/real_host.h"
#include "host/standard_input.h"
#include "lsp/message_stream.h"
#include "lsp/server.h"

namespace {

// Adds all that has arrived before any of it is handled: a request may be cancelled, a text changed again. False at the
// end of the input.
bool receive(kiln::MessageStream& stream) {
  std::array<char, size_t{64} * 1024> buffer;
  do {
    const size_t count = kiln::readStandardInput(buffer);
    if (count == 0) return false;
    stream.add({buffer.data(), count});
  } while (kiln::hasStandardInput());
  return true;
}

void send(kiln::Server& server, kiln::RealHost& host) {
  for (const std::string& output : server.takeOutput())
    host.printOutput(kiln::framed(output));
}

}  // namespace

int main(int argc, char** argv) {
  kiln::RealHost host(kiln::Reading::RegularFiles);
  kiln::Server server(host, kiln::readArguments(argc, argv).at(0));
  kiln::MessageStream stream;
  for (bool isOpen = true; isOpen && !server.isOver();) {
    isOpen = receive(stream);
    while (const std::optional<std::string> message = stream.next())
      server.receive(*message);
    while (server.handleNext())
      send(server, host);
    server.settle();
    send(server, host);
  }
  return server.isOver() ? server.exitStatus() : 1;
}
