#include "support/fuzz_run.h"

#include "base/log.h"

#include <sched.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>

namespace vornic::test {

namespace {

template<typename Number>
Number argument(int argc, char **argv, int index, Number defaultValue)
{
    if (index >= argc)
        return defaultValue;
    bool isNumber = false;
    const auto number = static_cast<Number>(QByteArray(argv[index]).toUInt(&isNumber));
    if (!isNumber)
        qFatal("%s is not a number", argv[index]);
    return number;
}

/// Pins this thread and those that it starts later to one processor: where threads only hand work to one another, that
/// takes a third of the time.
void stayOnOneProcessor()
{
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<std::size_t>(std::max(0, sched_getcpu())), &one);
    sched_setaffinity(0, sizeof one, &one);
}

} // namespace

int FuzzRandom::below(qsizetype limit)
{
    return limit <= 0 ? 0 : static_cast<int>(next() % static_cast<std::size_t>(limit));
}

QByteArray FuzzRandom::bytes(int maxSize)
{
    QByteArray bytes(below(maxSize + 1), '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(below(256));
    return bytes;
}

void FuzzRandom::damage(QByteArray &bytes, int place)
{
    switch (below(7)) {
    case 0:
        bytes[place] = static_cast<char>(bytes[place] ^ (1 << below(8)));
        break;
    case 1:
        bytes[place] = static_cast<char>(below(256));
        break;
    case 2:
        bytes.replace(place, below(4), QByteArray(1 + below(4), below(2) == 0 ? '\xff' : '\0'));
        break;
    case 3:
        bytes.truncate(place);
        break;
    case 4:
        bytes.insert(place, this->bytes(8));
        break;
    case 5:
        bytes.insert(below(bytes.size()), bytes.mid(place, 1 + below(200)));
        break;
    default:
        bytes.remove(place, 1 + below(40));
    }
}

QByteArray FuzzRandom::damaged(QByteArray bytes, int maxChanges)
{
    for (int changes = 1 + below(maxChanges); changes > 0 && !bytes.isEmpty(); --changes)
        damage(bytes, below(bytes.size()));
    return bytes;
}

FuzzRun::FuzzRun(int argc, char **argv, int defaultCount)
    : m_count(argument(argc, argv, 1, defaultCount))
    , m_random(argument(argc, argv, 2, 1U))
{
    setLogSink([](const QString &) {});
    stayOnOneProcessor();
}

void FuzzRun::feedAll(const char *what, const std::function<void(int)> &feedOne) const
{
    for (int number = 0; number < m_count; ++number)
        feedOne(number);
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%s: %d inputs, peak memory %ld KiB\n", what, m_count, usage.ru_maxrss);
}

} // namespace vornic::test
