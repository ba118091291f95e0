// arcx -r ARCHIVE [FOLDER]: unpacks an ARC archive into FOLDER (made when missing) or the current
// folder, with Debian's nomarch. The files come out in a fresh folder inside the target and are moved
// into place only when each is a plain file or folder, so no entry can land outside the target.
// Names are carried as bytes throughout: a name from an old archive need not be valid UTF-8.

#include <QCoreApplication>
#include <QProcess>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int fail(const QByteArray& message) {
    std::fprintf(stderr, "arcx: %s\n", message.constData());
    return 1;
}

QByteArray lastError() {
    return QByteArray(std::strerror(errno));
}

// Every folder of the path, as mkdir -p.
bool makeFolders(const QByteArray& path) {
    for (qsizetype i = 1; i <= path.size(); ++i) {
        if (i < path.size() && path[i] != '/') continue;
        if (::mkdir(path.left(i).constData(), 0777) != 0 && errno != EEXIST) return false;
    }
    struct stat st {};
    return ::stat(path.constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

int removeOne(const char* path, const struct stat*, int, struct FTW*) {
    return ::remove(path);
}
void removeTree(const QByteArray& path) {
    ::nftw(path.constData(), removeOne, 16, FTW_DEPTH | FTW_PHYS);
}

struct Moves {
    int problems = 0;
    QByteArray first;
    void problem(const QByteArray& text) {
        if (problems++ == 0) first = text;
    }
};

// Moves what lies in from into to, folder by folder; anything but a plain file or folder stays
// behind, and so does a folder whose place in the target is taken by something else (a link).
void moveInto(const QByteArray& from, const QByteArray& to, Moves& moves) {
    QList<QByteArray> names;
    if (DIR* dir = ::opendir(from.constData())) {
        while (const dirent* e = ::readdir(dir))
            if (std::strcmp(e->d_name, ".") != 0 && std::strcmp(e->d_name, "..") != 0) names << e->d_name;
        ::closedir(dir);
    } else {
        moves.problem(from + ": " + lastError());
        return;
    }
    for (const QByteArray& name : names) {
        const QByteArray source = from + '/' + name;
        const QByteArray target = to + '/' + name;
        struct stat st {};
        if (::lstat(source.constData(), &st) != 0) {
            moves.problem(name + ": " + lastError());
        } else if (S_ISREG(st.st_mode)) {
            // rename replaces a file or a link of that name itself; it never writes through a link.
            if (::rename(source.constData(), target.constData()) != 0)
                moves.problem(name + ": " + lastError());
        } else if (S_ISDIR(st.st_mode)) {
            struct stat there {};
            if (::mkdir(target.constData(), 0777) != 0 && errno != EEXIST)
                moves.problem(name + ": " + lastError());
            else if (::lstat(target.constData(), &there) != 0 || !S_ISDIR(there.st_mode))
                moves.problem(name + ": the place is taken by something that is not a folder");
            else
                moveInto(source, target, moves);
        } else {
            moves.problem(name + ": not a plain file, left out");
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3 || argc > 4 || std::strcmp(argv[1], "-r") != 0) {
        std::fputs("usage: arcx -r ARCHIVE [FOLDER]\n", stderr);
        return 2;
    }
    const QByteArray given(argv[2]);
    const QByteArray folder = argc == 4 && *argv[3] ? QByteArray(argv[3]) : QByteArray(".");
    QCoreApplication app(argc, argv);

    QByteArray archive = given;
    if (!archive.startsWith('/')) {
        char* cwd = ::getcwd(nullptr, 0);
        archive = QByteArray(cwd ? cwd : ".") + '/' + archive;
        std::free(cwd);
    }
    struct stat st {};
    if (::stat(archive.constData(), &st) != 0 || ::access(archive.constData(), R_OK) != 0)
        return fail(given + ": " + lastError());
    if (!S_ISREG(st.st_mode)) return fail(given + ": not a file");
    if (!makeFolders(folder)) return fail(folder + ": cannot make the folder: " + lastError());
    if (::chdir(folder.constData()) != 0) return fail(folder + ": " + lastError());

    char work[] = ".arcx-XXXXXX";
    if (!::mkdtemp(work)) return fail("cannot make a work folder in " + folder + ": " + lastError());
    const QByteArray temp(work);
    // nomarch gets plain ASCII arguments whatever the archive's name: a link to it beside its output.
    if (::symlink(archive.constData(), (temp + "/in.arc").constData()) != 0 ||
        ::mkdir((temp + "/out").constData(), 0700) != 0) {
        const QByteArray cause = lastError();
        removeTree(temp);
        return fail("cannot prepare the work folder: " + cause);
    }

    QProcess nomarch;
    nomarch.setProgram(QStringLiteral("nomarch"));
    // -U keeps the names' case as the archive stores them.
    nomarch.setArguments({QStringLiteral("-U"), QStringLiteral("../in.arc")});
    nomarch.setWorkingDirectory(QString::fromLatin1(temp + "/out"));
    nomarch.setStandardInputFile(QProcess::nullDevice());
    nomarch.setStandardOutputFile(QProcess::nullDevice());
    nomarch.start();
    if (!nomarch.waitForStarted()) {
        removeTree(temp);
        return fail("cannot run nomarch: " + nomarch.errorString().toLocal8Bit());
    }
    nomarch.waitForFinished(-1); // the caller bounds the whole run
    if (nomarch.exitStatus() != QProcess::NormalExit || nomarch.exitCode() != 0) {
        const QList<QByteArray> lines = nomarch.readAllStandardError().trimmed().split('\n');
        removeTree(temp);
        const QByteArray cause = lines.last().trimmed();
        return fail(given + ": " + (cause.isEmpty() ? QByteArray("nomarch failed") : cause));
    }

    Moves moves;
    moveInto(temp + "/out", ".", moves);
    removeTree(temp);
    if (moves.problems == 1) return fail(given + ": " + moves.first);
    if (moves.problems > 1)
        return fail(given + ": " + moves.first + " (and " + QByteArray::number(moves.problems - 1) +
                    " more)");
    return 0;
}
