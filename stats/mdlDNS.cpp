#include "stats/mdlDNS.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "config/mdlConfigs.h"
#include "config/text.h"
#include "platform/host_names.h"
#include "stats/name_lookups.h"

namespace mdlDNS {
namespace {

using name_lookups::Answer;
using platform::LookupResult;

struct State {
  std::unordered_map<std::string, Answer> answers;
  std::unordered_set<std::string> left_out;  // addresses of the page that were not asked for
  bool gave_up = false;
};

State state;

const Answer* KnownAnswer(const std::string& ip) {
  const auto known = state.answers.find(ip);
  return known == state.answers.end() ? nullptr : &known->second;
}

bool ShowsLife(const std::string& ip) {
  const Answer* answer = KnownAnswer(ip);
  return answer != nullptr && name_lookups::ShowsLife(ip, *answer);
}

// Those of the addresses that nothing is known of, each once.
std::vector<std::string> UnknownOf(const std::vector<std::string>& ips) {
  std::vector<std::string> unknown;
  std::unordered_set<std::string_view> seen;
  for (const std::string& ip : ips) {
    if (KnownAnswer(ip) == nullptr && seen.insert(ip).second) unknown.push_back(ip);
  }
  return unknown;
}

void Keep(const std::string& ip, std::optional<Answer> answer) {
  if (answer) {
    state.answers.emplace(ip, *std::move(answer));
  } else {
    state.left_out.insert(ip);
  }
}

// Nobody has answered: some lookups timed out, and all others were not worth a question.
bool NobodyAnswered(const std::vector<std::string>& ips) {
  const auto timed_out = [](const std::string& ip) {
    const Answer* answer = KnownAnswer(ip);
    return answer != nullptr && answer->result == LookupResult::kTimedOut;
  };
  return std::any_of(ips.begin(), ips.end(), timed_out) &&
         std::none_of(ips.begin(), ips.end(), ShowsLife);
}

void GiveUp() {
  state.gave_up = true;
  mdlConfigs::LogWarning(
      ": Name lookups timed out; this run asks for no more names and shows addresses without");
}

// The name that is known for an address, blanks as they came. The reason why there is none is
// entered in the event log the first time.
std::string KnownName(const std::string& ip) {
  const auto known = state.answers.find(ip);
  if (known == state.answers.end()) return "";
  const std::string error = std::exchange(known->second.error, "");
  if (!error.empty()) {
    mdlConfigs::LogWarning(": Couldn't lookup name for IP address " + ip + ". Code: " + error);
  }
  return known->second.result == LookupResult::kFound ? known->second.name : "";
}

void AskFor(const std::vector<std::string>& ips) {
  const std::vector<std::string> unknown = UnknownOf(ips);
  if (state.gave_up || unknown.empty()) return;
  const bool answered = std::any_of(ips.begin(), ips.end(), ShowsLife);
  std::vector<std::optional<Answer>> answers = name_lookups::AskAll(unknown, answered);
  for (std::size_t i = 0; i < unknown.size(); ++i) Keep(unknown[i], std::move(answers[i]));
  if (NobodyAnswered(ips)) GiveUp();
}

}  // namespace

void BeginRun() {
  state.gave_up = false;
  state.left_out.clear();
  std::erase_if(state.answers,
                [](const auto& known) { return known.second.result == LookupResult::kTimedOut; });
}

void LookUpPage(const std::vector<std::string>& ips) {
  state.left_out.clear();
  AskFor(ips);
}

std::string HostNameOf(const std::string& ip) {
  if (!state.left_out.contains(ip)) AskFor({ip});
  const std::string name = KnownName(ip);
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
