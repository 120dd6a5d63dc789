// Calls run in a child process of the test, for what a test cannot do to
// itself: act as a user without rights (the tests run as root in CI, and root
// may write anywhere), see a file system mounted read-only or out of inodes
// in a mount namespace of its own, or race another process. The child's
// answer comes back as text through a pipe.
#pragma once
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"

namespace qx::test {

// What a child answers when it could not set itself up; the test is skipped.
inline constexpr const char* ChildCannot = "CANNOT: ";

// Runs call in a child and gives its answer: the text it returned, or
// "RuntimeError N: description" for a RuntimeError it raised.
inline std::string inChild(const std::function<std::string()>& call) {
    int fds[2];
    if (::pipe(fds) != 0) return std::string(ChildCannot) + "no pipe";
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(fds[0]);
        std::string answer;
        try {
            answer = call();
        } catch (const RuntimeError& e) {
            answer = "RuntimeError " + std::to_string(e.Number()) + ": " + toUtf8(e.Description());
        } catch (const std::exception& e) {
            answer = std::string("exception: ") + e.what();
        }
        for (size_t done = 0; done < answer.size();) {
            const ssize_t n = ::write(fds[1], answer.data() + done, answer.size() - done);
            if (n <= 0) break;
            done += static_cast<size_t>(n);
        }
        ::_exit(0);
    }
    ::close(fds[1]);
    std::string answer;
    char buffer[4096];
    for (ssize_t n; (n = ::read(fds[0], buffer, sizeof buffer)) > 0;) answer.append(buffer, static_cast<size_t>(n));
    ::close(fds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return answer;
}

// In a child: become a user without rights of its own (nobody), when this
// process is root; a user who is not root has no rights on root's files
// already. Gives an error text, empty when done.
inline std::string becomeNobody() {
    if (::geteuid() != 0) return "";
    if (::setgid(65534) != 0 || ::setuid(65534) != 0)
        return std::string(ChildCannot) + "setuid: " + std::strerror(errno);
    return "";
}

// A folder no one but root may write, for the life of this object: with
// becomeNobody in a child, a folder that the child cannot write, whoever
// runs the test.
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
        using std::filesystem::perms;
        std::filesystem::permissions(folder_, perms::owner_read | perms::owner_exec | perms::group_read |
                                                  perms::group_exec | perms::others_read | perms::others_exec);
    }
    ~ReadOnlyFolder() {
        std::error_code ignored;
        std::filesystem::permissions(folder_, std::filesystem::perms::owner_write, std::filesystem::perm_options::add,
                                     ignored);
    }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

private:
    std::filesystem::path folder_;
};

// In a child: a tmpfs with the options over folder, seen by this child only.
inline std::string mountPrivateTmpfs(const std::string& folder, unsigned long flags, const std::string& options) {
    if (::unshare(CLONE_NEWNS) != 0) return std::string(ChildCannot) + "unshare: " + std::strerror(errno);
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return std::string(ChildCannot) + "private mounts: " + std::strerror(errno);
    if (::mount("tmpfs", folder.c_str(), "tmpfs", flags, options.c_str()) != 0)
        return std::string(ChildCannot) + "mount: " + std::strerror(errno);
    return "";
}

// In a child: folder, already mounted, made read-only.
inline std::string remountReadOnly(const std::string& folder) {
    if (::mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
        return std::string(ChildCannot) + "remount: " + std::strerror(errno);
    return "";
}

}  // namespace qx::test
