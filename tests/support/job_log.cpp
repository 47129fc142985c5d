#include "support/job_log.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace clipfix::test {

Lines Join(std::initializer_list<Lines> parts) {
    Lines joined;
    for (const auto& part : parts) {
        joined.insert(joined.end(), part.begin(), part.end());
    }
    return joined;
}

void JobLog::Add(std::string line) {
    {
        const std::lock_guard lock(mutex_);
        entries_.push_back({std::move(line), std::this_thread::get_id() == interface_});
    }
    grown_.notify_all();
}

Lines JobLog::All() const {
    const std::lock_guard lock(mutex_);
    Lines lines;
    for (const auto& entry : entries_) {
        lines.push_back(entry.line);
    }
    return lines;
}

Lines JobLog::Of(bool interface) const {
    const std::lock_guard lock(mutex_);
    Lines lines;
    for (const auto& entry : entries_) {
        if (entry.isOfInterface == interface) {
            lines.push_back(entry.line);
        }
    }
    return lines;
}

void JobLog::Clear() {
    const std::lock_guard lock(mutex_);
    entries_.clear();
}

bool JobLog::WaitFor(const std::string& line, int times) const {
    std::unique_lock lock(mutex_);
    return grown_.wait_for(lock, std::chrono::seconds(30), [&] { return Count(line) >= times; });
}

bool JobLog::Has(const std::string& line) const {
    const std::lock_guard lock(mutex_);
    return Count(line) > 0;
}

int JobLog::Count(const std::string& line) const {
    return static_cast<int>(std::count_if(entries_.begin(), entries_.end(),
                                          [&](const Entry& entry) { return entry.line == line; }));
}

}  // namespace clipfix::test
