#include "Output_File.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <random>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morvane {

namespace {

constexpr int kMaxFreeNames = 100000;
const std::string kPartSuffix = ".part";

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string("./") : path.substr(0, slash + 1);
}

std::string nameOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string systemError(int code) {
    return std::strerror(code);
}

// The part-file prefix of a final name: ".<name>.". A name near the file system's limit of 255 bytes
// is cut, so that the part's own name still fits.
std::string partPrefix(const std::string& finalPath) {
    constexpr std::size_t kLongest = 200;
    const std::string name = nameOf(finalPath);
    return "." + (name.size() > kLongest ? name.substr(0, kLongest) + "~" : name) + ".";
}

std::string randomTag() {
    static thread_local std::mt19937_64 engine{std::random_device{}()};
    char tag[17];
    std::snprintf(tag, sizeof tag, "%016llx", static_cast<unsigned long long>(engine()));
    return tag;
}

// renameat2 with RENAME_NOREPLACE; a file system without it gets a hard link and an unlink, which
// refuse a taken name just the same. 0 or an errno value.
int renameNoReplace(const std::string& from, const std::string& to) {
#ifdef RENAME_NOREPLACE
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) return errno;
#endif
    if (link(from.c_str(), to.c_str()) == 0) {
        unlink(from.c_str());
        return 0;
    }
    if (errno == EEXIST) return EEXIST;
    // No hard links either (FAT and the like): the last check is ours, the gap is a few microseconds.
    struct stat st {};
    if (lstat(to.c_str(), &st) == 0) return EEXIST;
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

} // namespace

FileIdentity File_Identity(const std::string& path) {
    FileIdentity id;
    struct stat st {};
    if (stat(path.c_str(), &st) != 0) {
        // A dangling link still takes the name.
        id.exists = lstat(path.c_str(), &st) == 0;
        return id;
    }
    id.exists = true;
    id.regular = S_ISREG(st.st_mode);
    id.device = st.st_dev;
    id.inode = st.st_ino;
    id.changedNs = static_cast<long long>(st.st_ctim.tv_sec) * 1'000'000'000 + st.st_ctim.tv_nsec;
    return id;
}

std::string Free_NameCandidate(const std::string& path, int attempt) {
    const std::string folder = path.find('/') == std::string::npos ? std::string() : folderOf(path);
    const std::string name = nameOf(path);
    const std::size_t dot = name.rfind('.');
    const std::string base = dot == std::string::npos ? name : name.substr(0, dot);
    const std::string extension = dot == std::string::npos ? std::string() : name.substr(dot);
    const std::string number = attempt == 0 ? std::string() : "_" + std::to_string(attempt);
    return folder + base + "_(new" + number + ")" + extension;
}

bool Rename_Free(const std::string& from, const std::string& to, std::string& landed, std::string& error) {
    std::string target = to;
    for (int attempt = 0; attempt <= kMaxFreeNames; ++attempt) {
        const int r = renameNoReplace(from, target);
        if (r == 0) {
            landed = target;
            return true;
        }
        if (r != EEXIST) {
            error = "moving '" + from + "' to '" + target + "': " + systemError(r);
            return false;
        }
        target = Free_NameCandidate(to, attempt);
    }
    error = "moving '" + from + "' to '" + to + "': no free name";
    return false;
}

void Remove_StaleParts(const std::string& finalPath) {
    const std::string folder = folderOf(finalPath);
    const std::string prefix = partPrefix(finalPath);
    DIR* dir = opendir(folder.c_str());
    if (!dir) return;
    while (const dirent* entry = readdir(dir)) {
        const std::string name = entry->d_name;
        if (name.size() <= prefix.size() + kPartSuffix.size() ||
            name.compare(0, prefix.size(), prefix) != 0 ||
            name.compare(name.size() - kPartSuffix.size(), kPartSuffix.size(), kPartSuffix) != 0)
            continue;
        // The random tag between prefix and suffix holds no dot: "a.mp4" must not clear "a.mp4.x.mp4".
        if (name.find('.', prefix.size()) != name.size() - kPartSuffix.size()) continue;
        const std::string path = folder + name;
        const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        if (fd < 0) continue;
        // A lock we can take has no live owner.
        if (flock(fd, LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
        close(fd);
    }
    closedir(dir);
}

PartFile::~PartFile() {
    discard();
}

bool PartFile::create(const std::string& finalPath, std::string& error) {
    discard();
    Remove_StaleParts(finalPath);
    const std::string folder = folderOf(finalPath);
    const std::string prefix = partPrefix(finalPath);
    for (int attempt = 0; attempt < 16; ++attempt) {
        const std::string path = folder + prefix + randomTag() + kPartSuffix;
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0) {
            if (errno == EEXIST) continue;
            error = "opening output '" + finalPath + "': " + systemError(errno);
            return false;
        }
        flock(fd, LOCK_EX | LOCK_NB);
        m_fd = fd;
        m_path = path;
        return true;
    }
    error = "opening output '" + finalPath + "': no free temporary name";
    return false;
}

bool PartFile::commit(const std::string& finalPath, const FileIdentity& replaceable, std::string& landed,
                      std::string& error) {
    if (m_path.empty()) {
        error = "no output to move to '" + finalPath + "'";
        return false;
    }
    const FileIdentity now = File_Identity(finalPath);
    bool ok = false;
    if (now.unchangedSince(replaceable)) {
        // The overwrite the user asked for, of the very file that stood there at the start.
        ok = rename(m_path.c_str(), finalPath.c_str()) == 0;
        if (ok)
            landed = finalPath;
        else
            error = "moving '" + m_path + "' to '" + finalPath + "': " + systemError(errno);
    } else {
        ok = Rename_Free(m_path, finalPath, landed, error);
    }
    if (ok) {
        m_path.clear(); // it has a final name now: nothing to remove
        release();
    }
    return ok;
}

void PartFile::discard() {
    if (!m_path.empty()) unlink(m_path.c_str());
    m_path.clear();
    release();
}

void PartFile::release() {
    if (m_fd >= 0) close(m_fd);
    m_fd = -1;
}

} // namespace morvane
