// Loaded before the C library (LD_PRELOAD): keeps what of a folder a disk would still have after the power was cut.
//
// FORGET_ROOT is the folder, FORGET_STORE another one that takes what is durable, FORGET_SYNC_MS how long the disk
// takes. Each fsync() or fdatasync() of a file beneath the root copies the file's bytes to the store, and that of a
// folder its list of names. The copy takes its place in the store, at once, only after the disk's time and before the
// call returns: nobody is told that something is durable that is not. Nothing else reaches the store.
// cut_power.py makes of it what a program finds after the cut.

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

namespace {

using Sync = int (*)(int);

std::string variable(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

std::string pathOf(int descriptor)
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), error);
}

bool isBeneathRoot(int descriptor)
{
    const std::string root = variable("FORGET_ROOT");
    const std::string path = pathOf(descriptor);
    return !root.empty() && (path == root || path.rfind(root + "/", 0) == 0);
}

/// What a file or folder is, whatever it is called: its number, and when it was made, as numbers are used again.
std::string identityOf(int folder, const char *name)
{
    struct statx status {
    };
    constexpr unsigned wanted = STATX_INO | STATX_BTIME | STATX_TYPE;
    if (statx(folder, name, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW, wanted, &status) != 0)
        return {};
    const char kind = S_ISDIR(status.stx_mode) ? 'd' : 'f';
    return kind + std::to_string(status.stx_ino) + "-" + std::to_string(status.stx_btime.tv_sec) + "-"
        + std::to_string(status.stx_btime.tv_nsec);
}

/// All of the file, also where it is open for writing only.
bool copyBytes(int descriptor, std::FILE *to)
{
    const int from = ::open(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), O_RDONLY | O_CLOEXEC);
    if (from < 0)
        return false;
    std::array<char, 65536> bytes {};
    ssize_t count = 0;
    off_t offset = 0;
    while ((count = ::pread(from, bytes.data(), bytes.size(), offset)) > 0) {
        offset += count;
        std::fwrite(bytes.data(), 1, static_cast<std::size_t>(count), to);
    }
    ::close(from);
    return count == 0;
}

/// A line for each name in the folder: its identity, a blank, the name.
bool listNames(int descriptor, std::FILE *to)
{
    const int again = ::openat(descriptor, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR *names = again < 0 ? nullptr : ::fdopendir(again);
    if (!names)
        return false;
    while (const dirent *entry = ::readdir(names)) {
        const std::string name = entry->d_name;
        const std::string identity = identityOf(again, name.c_str());
        if (name != "." && name != ".." && !identity.empty())
            std::fprintf(to, "%s %s\n", identity.c_str(), name.c_str());
    }
    ::closedir(names);
    return true;
}

void fail(const char *what)
{
    std::perror(what);
    std::_Exit(86);
}

int syncDurably(int descriptor, const char *function)
{
    const auto systems = reinterpret_cast<Sync>(dlsym(RTLD_NEXT, function));
    if (!isBeneathRoot(descriptor))
        return systems(descriptor);
    static std::atomic<unsigned> copies = 0;
    const std::string identity = identityOf(descriptor, "");
    const std::string store = variable("FORGET_STORE") + "/";
    const std::string copy = store + "." + std::to_string(::getpid()) + "-" + std::to_string(++copies);
    std::FILE *file = std::fopen(copy.c_str(), "wb");
    if (!file || identity.empty())
        fail("forget_unsynced: store");
    const bool isCopied = identity[0] == 'd' ? listNames(descriptor, file) : copyBytes(descriptor, file);
    if (std::fclose(file) != 0 || !isCopied)
        fail("forget_unsynced: copy");
    std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(variable("FORGET_SYNC_MS").c_str())));
    if (std::rename(copy.c_str(), (store + identity).c_str()) != 0)
        fail("forget_unsynced: rename");
    return 0;
}

} // namespace

extern "C" int fsync(int descriptor)
{
    return syncDurably(descriptor, "fsync");
}

extern "C" int fdatasync(int descriptor)
{
    return syncDurably(descriptor, "fdatasync");
}
