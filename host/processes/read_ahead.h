// Looking at files before their turn comes, in processes side by side.
#pragma once

#include <functional>
#include <string>

namespace kelto::host {

/// Does `work` and gives all that ReadApart gave it meanwhile: results, messages, and how it
/// failed, with which `work` may end. To be called in a process of its own, whose messages are kept
/// from then on, not printed.
std::string AnswersDuring(const std::function<void()>& work);

/// Does `work`, in which ReadApart gives these answers at once for as long as it is asked for the
/// same files in the same order, messages and failures included, and reads for itself from then on.
void WithAnswers(const std::string& answers, const std::function<void()>& work);

/// What ReadApart asks: see WithAnswers. False where it has to read; else `text` is what it gives,
/// or what it throws is thrown.
bool IsAnswered(const std::string& file, std::string& text);

/// What ReadApart does with an answer: see AnswersDuring. `read` reads, and what it gives or throws
/// is kept.
std::string KeptAnswer(const std::string& file, const std::function<std::string()>& read);

}  // namespace kelto::host
