#include "tests/power/cut_disk.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kelto::test {

std::vector<LoggedStep> ReadWriteLog(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string log(std::istreambuf_iterator<char>(file), {});
  std::vector<LoggedStep> steps;
  for (size_t at = 0; at < log.size();) {
    LoggedStep step;
    LogEntry& head = step;
    if (log.size() - at < sizeof head) throw std::runtime_error("half an entry in the log");
    std::memcpy(&head, &log[at], sizeof head);
    at += sizeof head;
    step.name = log.substr(at, head.nameBytes);
    at += head.nameBytes;
    step.data = log.substr(at, head.dataBytes);
    at += head.dataBytes;
    steps.push_back(std::move(step));
  }
  return steps;
}

CutDisk::Entry& CutDisk::At(uint64_t folder, const std::string& name) {
  return entries_.try_emplace({folder, name}, Entry{nullptr, {nullptr}}).first->second;
}

void CutDisk::Change(uint64_t folder, const std::string& name, const File& file) {
  Entry& entry = At(folder, name);
  entry.now = file;
  entry.possible.insert(file);
}

void CutDisk::Put(uint64_t folder, const std::string& name, const std::string* content) {
  const File file = content == nullptr ? nullptr : std::make_shared<DiskFile>(*content, *content);
  entries_[{folder, name}] = {file, {file}};
}

void CutDisk::Replay(const LoggedStep& step) {
  switch (step.call) {
    case LoggedCall::kCreate:
      // Numbers of inodes come again.
      inodes_[step.inode] = std::make_shared<DiskFile>();
      Change(step.folder, step.name, inodes_[step.inode]);
      break;
    case LoggedCall::kWrite: {
      const auto file = inodes_.find(step.inode);
      if (file == inodes_.end()) break;  // made by others, such as the standard output
      std::string& content = file->second->now;
      if (content.size() < step.offset + step.data.size()) {
        content.resize(step.offset + step.data.size());
      }
      content.replace(step.offset, step.data.size(), step.data);
      break;
    }
    case LoggedCall::kSync:
      if (const auto file = inodes_.find(step.inode); file != inodes_.end()) {
        file->second->synced = file->second->now;
      }
      for (auto& [place, entry] : entries_) {
        if (place.first == step.inode) entry.possible = {entry.now};
      }
      break;
    case LoggedCall::kRename: {
      const File file = At(step.folder, step.name).now;
      Change(step.folder, step.name, nullptr);
      Change(step.folder, step.data, file);
      break;
    }
    case LoggedCall::kRemove:
      Change(step.folder, step.name, nullptr);
      break;
  }
}

CutDisk::Outcomes CutDisk::After(uint64_t folder, const std::string& name) const {
  const auto entry = entries_.find({folder, name});
  if (entry == entries_.end()) return {nullptr};
  return {entry->second.possible.begin(), entry->second.possible.end()};
}

}  // namespace kelto::test
