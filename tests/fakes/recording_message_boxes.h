// Message boxes that nobody sees: shown texts are kept, questions are answered from a script.
#ifndef HITWICK_TESTS_FAKES_RECORDING_MESSAGE_BOXES_H_
#define HITWICK_TESTS_FAKES_RECORDING_MESSAGE_BOXES_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/message_box.h"

namespace fakes {

class RecordingMessageBoxes : public platform::MessageBoxes {
 public:
  struct Question {
    std::string caption;
    std::string text;
    bool operator==(const Question&) const = default;
  };

  void Show(std::string_view text) override { shown.emplace_back(text); }

  // Takes the answers in order; no once they have run out.
  bool AskYesNo(std::string_view caption, std::string_view text) override {
    questions.push_back({std::string(caption), std::string(text)});
    return next_answer_ < answers.size() && answers[next_answer_++];
  }

  std::vector<bool> answers;
  std::vector<std::string> shown;
  std::vector<Question> questions;

 private:
  std::size_t next_answer_ = 0;
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_RECORDING_MESSAGE_BOXES_H_
