#include "results/checkpoint.hpp"

#include "state/messages.hpp"
#include "state/state_image.hpp"

#include <cstdio>
#include <cstring>

namespace {

// First record.
struct FileHead {
    char kind[16] = "VORDA periods 1";
    InputHash input{};
};
// Record in front of those of a period.
struct Entry {
    PeriodHead head;
    std::int64_t records = 0;
    std::uint64_t hash = 0; // of head and records
};

std::uint64_t entry_hash(const PeriodHead &head, const PeriodRecords &records) {
    std::uint64_t hash = hash_of(&head, sizeof head);
    for (const Bytes &record : records)
        hash = hash_of(record.data, record.size, hash);
    return hash;
}

RecordFile::Target target(void *data, std::size_t size) {
    return {data, size};
}

// Reads the next period; the records show `values`. False: there is none, or it is not whole.
bool read_entry(RecordFile &file, Entry &entry, std::vector<std::vector<char>> &values,
                PeriodRecords &records) {
    constexpr std::int64_t MOST = 64; // records of a period
    if (!file.read({target(&entry, sizeof entry)}) || entry.records < 0 || entry.records > MOST)
        return false;
    values.resize(static_cast<std::size_t>(entry.records));
    records.clear();
    for (std::vector<char> &value : values) {
        const std::int64_t length = file.next_length();
        if (length < 0 || length > file.bytes_left())
            return false;
        value.resize(static_cast<std::size_t>(length));
        if (!file.read({target(value.data(), value.size())}))
            return false;
        records.push_back({value.data(), value.size()});
    }
    return entry.hash == entry_hash(entry.head, records);
}

} // namespace

Status Checkpoint::start(const RunState &run, const Found &found) {
    name_ = run.files.checkpoint;
    if (name_.empty())
        return Status::ok;
    if (!file_.open_or_create(name_)) {
        give_up();
        return Status::ok;
    }
    std::int64_t end = 0;
    if (is_of_this_input(run)) {
        if (failed(read_periods(run, found, end)))
            return Status::failed;
        if (!file_.go_to(end))
            give_up();
        return Status::ok;
    }
    FileHead head;
    head.input = input_hash(run);
    if (!file_.go_to(0) || !file_.write({bytes_of(head)}) || !file_.flush())
        give_up();
    return Status::ok;
}

bool Checkpoint::is_of_this_input(const RunState &run) {
    constexpr const char *ANEW = "The periods of the checkpoint do not count, all are solved";
    if (file_.bytes_left() == 0)
        return false;
    FileHead found;
    if (!file_.read({target(&found, sizeof found)}) ||
        std::memcmp(found.kind, FileHead().kind, sizeof found.kind) != 0) {
        message(ANEW);
        message_detail(name_ + " is no checkpoint of this program");
        return false;
    }
    const InputHash own = input_hash(run);
    std::string differing;
    for (std::size_t k = 0; k < own.size(); ++k)
        if (found.input[k] != own[k])
            differing += (differing.empty() ? "" : ", ") + std::string(INPUT_PARTS[k]);
    if (differing.empty())
        return true;
    message(ANEW);
    message_detail(name_ + " was made with other input: " + differing + " changed");
    return false;
}

Status Checkpoint::read_periods(const RunState &run, const Found &found, std::int64_t &end) {
    Entry entry;
    std::vector<std::vector<char>> values;
    PeriodRecords records;
    int taken = 0;
    for (end = file_.place(); read_entry(file_, entry, values, records); end = file_.place(), ++taken) {
        if (entry.head.period < 1 || entry.head.period > run.periods.NPER)
            break;
        if (failed(found(entry.head, records)))
            return Status::failed;
    }
    message("Periods taken over from the checkpoint: " + std::to_string(taken) + " of " +
            std::to_string(run.periods.NPER));
    return Status::ok;
}

void Checkpoint::add(const PeriodHead &head, const PeriodRecords &records) {
    if (name_.empty())
        return;
    Entry entry;
    entry.head = head;
    entry.records = static_cast<std::int64_t>(records.size());
    entry.hash = entry_hash(head, records);
    bool good = file_.write({bytes_of(entry)});
    for (const Bytes &record : records)
        good = good && file_.write({record});
    if (!good || !file_.flush())
        give_up();
}

void Checkpoint::give_up() {
    message("WARNING: the checkpoint cannot be written, the run goes on without");
    message_detail(name_ + ", " + file_.error());
    remove();
}

void Checkpoint::remove() {
    if (name_.empty())
        return;
    file_.close();
    std::remove(name_.c_str());
    name_.clear();
}
