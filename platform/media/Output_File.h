// Safe outputs: a task writes to a hidden part file beside its final name, and only a finished output
// is moved into place. The move never replaces a file that the user did not agree to lose: the one
// file it may replace is the one that stood under the name when the task was queued (an overwrite the
// user asked for); anything else under the name sends the output to the next free name.
//
// Part files are named ".<final file name>.<random>.part" and locked (flock) for as long as their task
// runs, so that a leftover of a killed run is told apart from the part of a live one and removed by
// the next run that prepares the same name. Safe to call from any thread; a PartFile belongs to one.
#pragma once

#include <sys/types.h>

#include <string>

namespace morvane {

// What stands under a path (links followed), to tell one file from another. The change time tells a
// file from a new one that reuses the inode number, and from itself after it was rewritten.
struct FileIdentity {
    bool exists = false;
    bool regular = false; // a plain file, as opposed to a device, pipe or folder
    dev_t device = 0;
    ino_t inode = 0;
    long long changedNs = 0;
    bool sameFileAs(const FileIdentity& other) const {
        return exists && other.exists && device == other.device && inode == other.inode;
    }
    bool unchangedSince(const FileIdentity& earlier) const {
        return sameFileAs(earlier) && changedNs == earlier.changedNs;
    }
};
FileIdentity File_Identity(const std::string& path);

// The free name after `path` for attempt 0, 1, 2 ...: base_(new).ext, base_(new_1).ext ...
std::string Free_NameCandidate(const std::string& path, int attempt);

// Moves `from` to `to` without replacing anything; when `to` is taken, to the first free candidate
// name. `landed` receives the name used. False with `error` ("moving 'a' to 'b': reason") on failure.
bool Rename_Free(const std::string& from, const std::string& to, std::string& landed, std::string& error);

// Removes part files of `finalPath` that no live run holds.
void Remove_StaleParts(const std::string& finalPath);

class PartFile {
public:
    PartFile() = default;
    ~PartFile(); // removes the part unless it was committed
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    // Creates and locks a new part file beside `finalPath`, after clearing stale ones.
    bool create(const std::string& finalPath, std::string& error);
    const std::string& path() const { return m_path; }

    // Moves the finished part to `finalPath`. It replaces what stands there only when that is
    // `replaceable` (the file queued for overwriting), untouched since; anything else there keeps its
    // place and the output takes the next free name. `landed` receives the final name.
    bool commit(const std::string& finalPath, const FileIdentity& replaceable, std::string& landed,
                std::string& error);
    void discard();

private:
    void release();
    int m_fd = -1;
    std::string m_path;
};

} // namespace morvane
