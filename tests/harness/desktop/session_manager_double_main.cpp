// session_manager_double: a fake X session manager, controlled over standard input by the commands save, die,
// cancel and properties.

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <X11/SM/SMlib.h>

namespace {

struct Session;

// A connected client.
struct Member {
  Session* session = nullptr;
  IceConn connection = nullptr;
  SmsConn client = nullptr;  // null until the client has started the XSMP protocol
  bool registered = false;   // has joined the session
  bool left = false;
  bool shutdown = false;  // the current save request announces the end of the session
};

struct Session {
  std::vector<IceListenObj> listeners = {};
  std::list<Member> members = {};
  std::map<std::string, std::string> properties = {};
};

void say(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

void askToSave(Member& member, int type, bool shutdown) {
  member.shutdown = shutdown;
  SmsSaveYourself(member.client, type, shutdown, SmInteractStyleNone, False);
}

Status registerMember(SmsConn connection, SmPointer data, char* previousId) {
  // Each session starts empty, so a previous client ID is invalid.
  if (previousId != nullptr) {
    std::free(previousId);
    return 0;
  }
  const std::unique_ptr<char, decltype(&std::free)> id(SmsGenerateClientID(connection), std::free);
  SmsRegisterClientReply(connection, id.get());
  auto& member = *static_cast<Member*>(data);
  member.registered = true;
  say("registered");
  askToSave(member, SmSaveLocal, false);
  return 1;
}

void interact(SmsConn connection, SmPointer, int) {
  say("interact");
  SmsInteract(connection);
}

void interactDone(SmsConn, SmPointer, Bool) {}

void saveRequest(SmsConn, SmPointer, int, Bool, int, Bool, Bool) {}

void savePhase2(SmsConn connection, SmPointer) {
  SmsSaveYourselfPhase2(connection);
}

void saved(SmsConn connection, SmPointer data, Bool success) {
  // At the end of the session, Die or ShutdownCancelled follows instead of SaveComplete.
  if (!static_cast<Member*>(data)->shutdown) SmsSaveComplete(connection);
  say(success != 0 ? "saved yes" : "saved no");
}

void leave(SmsConn, SmPointer data, int count, char** reasons) {
  SmFreeReasons(count, reasons);
  static_cast<Member*>(data)->left = true;
}

std::string textOf(const SmProp& property) {
  std::string text;
  for (int i = 0; i < property.num_vals; ++i) {
    const auto* bytes = static_cast<const char*>(property.vals[i].value);
    if (i > 0) text += ' ';
    text += property.type == std::string("CARD8")
                ? std::to_string(static_cast<unsigned char>(*bytes))
                : std::string(bytes, static_cast<std::size_t>(property.vals[i].length));
  }
  return text;
}

std::map<std::string, std::string>& propertiesOf(SmPointer member) {
  return static_cast<Member*>(member)->session->properties;
}

void setProperties(SmsConn, SmPointer member, int count, SmProp** properties) {
  for (int i = 0; i < count; ++i) {
    propertiesOf(member)[properties[i]->name] = textOf(*properties[i]);
    SmFreeProperty(properties[i]);
  }
  std::free(static_cast<void*>(properties));
}

void deleteProperties(SmsConn, SmPointer member, int count, char** names) {
  for (int i = 0; i < count; ++i) {
    propertiesOf(member).erase(names[i]);
    std::free(names[i]);
  }
  std::free(static_cast<void*>(names));
}

void getProperties(SmsConn connection, SmPointer) {
  SmsReturnProperties(connection, 0, nullptr);
}

SmsCallbacks callbacksFor(Member& member) {
  SmsCallbacks calls{};
  calls.register_client = {registerMember, &member};
  calls.interact_request = {interact, &member};
  calls.interact_done = {interactDone, &member};
  calls.save_yourself_request = {saveRequest, &member};
  calls.save_yourself_phase2_request = {savePhase2, &member};
  calls.save_yourself_done = {saved, &member};
  calls.close_connection = {leave, &member};
  calls.set_properties = {setProperties, &member};
  calls.delete_properties = {deleteProperties, &member};
  calls.get_properties = {getProperties, &member};
  return calls;
}

Status welcome(SmsConn client, SmPointer data, unsigned long* mask, SmsCallbacks* calls, char**) {
  auto& members = static_cast<Session*>(data)->members;
  const auto member = std::ranges::find(members, SmsGetIceConnection(client), &Member::connection);
  if (member == members.end()) return 0;
  member->client = client;
  *calls = callbacksFor(*member);
  *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
          SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask |
          SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask |
          SmsGetPropertiesProcMask;
  return 1;
}

Bool letIn(char*) {
  return True;
}

// Replaces the library's default handler, which exits.
void hearOfLostConnection(IceConn) {}

// Returns the session's network address; empty on failure.
std::string openSession(Session& session) {
  std::array<char, 256> error{};
  const int size = static_cast<int>(error.size());
  int count = 0;
  IceListenObj* listeners = nullptr;
  IceSetIOErrorHandler(hearOfLostConnection);
  if (SmsInitialize("Tovalin", "1", welcome, &session, letIn, size, error.data()) == 0 ||
      IceListenForConnections(&count, &listeners, size, error.data()) == 0) {
    say(std::string("error ") + error.data());
    return {};
  }
  session.listeners.assign(listeners, listeners + count);
  for (IceListenObj listener : session.listeners) IceSetHostBasedAuthProc(listener, letIn);
  const std::unique_ptr<char, decltype(&std::free)> names(IceComposeNetworkIdList(count, listeners),
                                                          std::free);
  return names.get();
}

void letIntoSession(Session& session, IceListenObj listener) {
  IceAcceptStatus status = IceAcceptFailure;
  IceConn connection = IceAcceptConnection(listener, &status);
  if (connection == nullptr) return;
  session.members.push_back({.session = &session, .connection = connection});
}

void hear(Member& member) {
  if (IceProcessMessages(member.connection, nullptr, nullptr) != IceProcessMessagesSuccess ||
      IceConnectionStatus(member.connection) == IceConnectRejected) {
    member.left = true;
  }
}

void removeThoseWhoLeft(Session& session) {
  std::erase_if(session.members, [](const Member& member) {
    if (!member.left) return false;
    if (member.client != nullptr) SmsCleanUp(member.client);
    IceSetShutdownNegotiation(member.connection, False);
    IceCloseConnection(member.connection);
    if (member.registered) say("left");
    return true;
  });
}

void handle(Session& session, const std::string& command) {
  if (command == "properties") {
    for (const auto& [name, value] : session.properties)
      say(std::string("  ").append(name).append("=").append(value));
    return say("ok");
  }
  if (command != "save" && command != "die" && command != "cancel")
    return say("error unknown command " + command);
  for (Member& member : session.members) {
    if (!member.registered) continue;
    if (command == "save") askToSave(member, SmSaveBoth, true);
    if (command == "die") SmsDie(member.client);
    if (command == "cancel") SmsShutdownCancelled(member.client);
  }
  say("ok");
}

// Returns false at the end of the input.
bool readCommands(Session& session, std::string& pending) {
  std::array<char, 256> buffer;
  const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
  if (count <= 0) return false;
  pending.append(buffer.data(), static_cast<std::size_t>(count));
  for (auto end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
    handle(session, pending.substr(0, end));
    pending.erase(0, end + 1);
  }
  return true;
}

std::vector<pollfd> watched(const Session& session) {
  std::vector<pollfd> fds{{STDIN_FILENO, POLLIN, 0}};
  for (IceListenObj listener : session.listeners)
    fds.push_back({IceGetListenConnectionNumber(listener), POLLIN, 0});
  for (const Member& member : session.members)
    fds.push_back({IceConnectionNumber(member.connection), POLLIN, 0});
  return fds;
}

// Returns false at the end of the input.
bool waitAndServe(Session& session, std::string& pending) {
  std::vector<pollfd> fds = watched(session);
  ::poll(fds.data(), fds.size(), -1);
  auto ready = fds.begin();
  if (ready++->revents != 0 && !readCommands(session, pending)) return false;
  // Connections accepted below are not part of this poll.
  const auto connected = session.members.size();
  for (IceListenObj listener : session.listeners)
    if (ready++->revents != 0) letIntoSession(session, listener);
  auto member = session.members.begin();
  for (std::size_t i = 0; i < connected; ++i, ++member)
    if (ready++->revents != 0) hear(*member);
  removeThoseWhoLeft(session);
  return true;
}

}  // namespace

int main() {
  Session session;
  const std::string address = openSession(session);
  if (address.empty()) return 1;
  say("address " + address);
  say("ready");
  for (std::string pending; waitAndServe(session, pending);) continue;
  return 0;
}
