#include "stats/mdlDNS.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "config/mdlConfigs.h"
#include "config/text.h"
#include "platform/host_names.h"

namespace mdlDNS {
namespace {

using platform::LookupResult;

struct State {
  std::unordered_map<std::string, std::string> names;  // final answers, blanks as they came
  std::unordered_set<std::string> timed_out;           // addresses without an answer on this page
  int consecutive_timeouts = 0;

  bool GaveUp() const { return consecutive_timeouts >= kTimeoutLimit; }
};

State state;

void NoteTimeout(const std::string& ip) {
  state.timed_out.insert(ip);
  ++state.consecutive_timeouts;
  if (state.GaveUp()) {
    mdlConfigs::LogWarning(
        ": Name lookups timed out; the remaining addresses of this page are shown without names");
  }
}

void LogFailedLookup(const std::string& ip, const std::string& error) {
  mdlConfigs::LogWarning(": Couldn't lookup name for IP address " + ip + ". Code: " + error);
}

// Asks the resolver and keeps its answer. A failure is an answer too: asking again would only
// repeat the warning on every page.
std::string AskResolver(const std::string& ip) {
  std::string name;
  std::string error;
  const LookupResult result = platform::TheHostNames().NameOf(ip, &name, &error);
  if (result == LookupResult::kTimedOut) {
    NoteTimeout(ip);
    return "";
  }
  state.consecutive_timeouts = 0;
  if (result == LookupResult::kFailed) LogFailedLookup(ip, error);
  if (result != LookupResult::kFound) name.clear();
  return state.names[ip] = name;
}

// Every lookup starts and stops the sockets library, also when the start failed.
std::string LookUp(const std::string& ip) {
  std::string name;
  if (StartNetworking()) name = AskResolver(ip);
  platform::TheHostNames().Stop();
  return name;
}

std::string KnownOrLookedUp(const std::string& ip) {
  const auto known = state.names.find(ip);
  if (known != state.names.end()) return known->second;
  if (state.GaveUp() || state.timed_out.contains(ip)) return "";
  return LookUp(ip);
}

}  // namespace

void BeginPage() {
  state.timed_out.clear();
  state.consecutive_timeouts = std::min(state.consecutive_timeouts, kTimeoutLimit - 1);
}

std::string HostNameOf(const std::string& ip) {
  const std::string name = KnownOrLookedUp(ip);
  if (mdlConfigs::Run().LogTranslations) {
    mdlConfigs::LogInformation(" : Translated IP '" + ip + "' to '" + name + "'");
  }
  return std::string(text::TrimBlanks(name));
}

std::string LocalHostName() {
  StartNetworking();
  std::string name;
  if (!platform::TheHostNames().LocalNameBuffer(&name)) return "localhost";
  // The whole buffer is filtered: this is also what drops the terminating zero and the padding.
  std::erase_if(name, [](char c) { return c < '-' || c > 'z'; });
  return name;
}

bool StartNetworking() { return platform::TheHostNames().Start(); }

void Reset() { state = State{}; }

}  // namespace mdlDNS
