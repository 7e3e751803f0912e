#include "read/bytes.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <chrono>
#include <fstream>
#include <future>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "korvex/error.hpp"
#include "support/reading.hpp"
#include "support/temporary_directory.hpp"

namespace {

using namespace std::string_literals;

using korvex::Error;
using korvex::ErrorCode;
using korvex::Source;
using korvex::read::gunzip;
using korvex::read::load_file;
using korvex::read::load_stream;
using reading::contains;

const std::string kText = "# three atoms\n0 0 0\n1 0 0\n1 1 0\n";

std::string gzip(const std::string& content) {
  z_stream stream{};
  if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, MAX_WBITS + 16, 8,
                   Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("deflateInit2");
  }
  std::string packed(deflateBound(&stream, static_cast<uLong>(content.size())), '\0');
  std::string input = content;
  stream.next_in = reinterpret_cast<Bytef*>(input.data());
  stream.avail_in = static_cast<uInt>(input.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(packed.size() - stream.avail_out);
  deflateEnd(&stream);
  return packed;
}

// What is wrong; a failed test where nothing is.
template <typename Action>
std::string complaint(ErrorCode code, const Action& action) {
  try {
    action();
  } catch (const Error& error) {
    EXPECT_EQ(error.code(), code) << error.what();
    EXPECT_FALSE(error.file().empty());
    return error.what();
  }
  ADD_FAILURE() << "no complaint";
  return {};
}

TEST(Gunzip, GivesBackWhatWasPacked) {
  const std::string large(3'000'000, 'x');
  for (const std::string& content : {std::string(), kText, large}) {
    EXPECT_EQ(gunzip(gzip(content), "x"), content);
  }
}

TEST(Gunzip, JoinsMembers) { EXPECT_EQ(gunzip(gzip("one ") + gzip("two"), "x"), "one two"); }

TEST(Gunzip, IgnoresPadding) {
  EXPECT_EQ(gunzip(gzip("one") + std::string(512, '\0'), "x"), "one");
}

TEST(Gunzip, RefusesEveryCut) {
  const std::string packed = gzip(kText);
  for (std::size_t length = 2; length < packed.size(); ++length) {
    const std::string what =
        complaint(ErrorCode::kBadInput, [&] { gunzip(packed.substr(0, length), "x.gz"); });
    EXPECT_TRUE(contains(what, "x.gz: the gzip data is cut short")) << length;
  }
}

TEST(Gunzip, RefusesDamage) {
  const std::string packed = gzip(kText);
  for (std::size_t place = 10; place < packed.size(); ++place) {
    std::string damaged = packed;
    damaged[place] = static_cast<char>(damaged[place] ^ 0x10);
    EXPECT_THROW(gunzip(damaged, "x"), Error) << place;
  }
}

TEST(Gunzip, RefusesWhatFollows) {
  const std::string what =
      complaint(ErrorCode::kBadInput, [] { gunzip(gzip("one") + "two", "x"); });
  EXPECT_TRUE(contains(what, "bytes follow the end"));
}

TEST(Gunzip, StopsAtTheLimit) {
  const std::string what = complaint(ErrorCode::kCannotRead, [] {
    gunzip(gzip(std::string(64 << 20, '\0')), "bomb", std::size_t{1} << 20);
  });
  EXPECT_TRUE(contains(what, "bomb: holds more than 1 MiB"));
}

TEST(LoadFile, GivesTheContent) {
  const TemporaryDirectory directory;
  const std::string large(1'000'003, 'y');
  for (const std::string& content : {std::string(), std::string("a"), kText, large}) {
    EXPECT_EQ(load_file(directory.write("file", content)), content);
  }
}

TEST(LoadFile, StopsAtTheLimit) {
  const TemporaryDirectory directory;
  const std::string path = directory.write("file", std::string(1001, 'y'));
  EXPECT_EQ(load_file(path, 1001).size(), 1001U);
  EXPECT_TRUE(contains(complaint(ErrorCode::kCannotRead, [&] { load_file(path, 1000); }),
                       "holds more than"));
}

TEST(LoadFile, RefusesWhatIsNoFile) {
  const TemporaryDirectory directory;
  const auto refusal = [](const std::string& path) {
    return complaint(ErrorCode::kCannotRead, [&] { load_file(path); });
  };
  EXPECT_TRUE(contains(refusal(directory.path("")), "is a directory"));
  EXPECT_TRUE(contains(refusal(directory.path("none")), "none: cannot be opened: No such file"));
  EXPECT_TRUE(contains(refusal("/dev/zero"), "is a device"));
  EXPECT_TRUE(contains(refusal(directory.write("file", "") + "/below"), "Not a directory"));
}

TEST(LoadFile, DoesNotWaitForEverForAPipesWriter) {
  const TemporaryDirectory directory;
  const std::string path = directory.path("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const std::string what =
      complaint(ErrorCode::kCannotRead, [&] { load_file(path, 1 << 20, /*patience_ms=*/1); });
  EXPECT_TRUE(contains(what, "is a pipe that nothing writes to"));
}

// Whether a thread of this process waits for something.
bool sleeps(pid_t thread) {
  std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
  std::string text;
  std::getline(file, text);
  const std::size_t name_end = text.rfind(") ");
  return name_end != std::string::npos && text[name_end + 2] == 'S';
}

TEST(LoadFile, WaitsAsLongAsAWriterHoldsThePipeOpen) {
  const TemporaryDirectory directory;
  const std::string path = directory.path("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const int writer = open(path.c_str(), O_RDWR | O_CLOEXEC);
  std::promise<pid_t> reader;
  auto read = std::async(std::launch::async, [&] {
    reader.set_value(gettid());
    return load_file(path, 1 << 20, /*patience_ms=*/0);
  });
  const pid_t thread = reader.get_future().get();
  const auto is_done = [&] {
    return read.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  };
  // Twice, so that it is not the file's opening that it waits for.
  for (int seen = 0; seen < 2 && !is_done();) seen += sleeps(thread) ? 1 : 0;
  EXPECT_EQ(write(writer, "text", 4), 4);
  close(writer);
  EXPECT_EQ(read.get(), "text");
}

TEST(LoadFile, ReadsAPipeToItsEnd) {
  const TemporaryDirectory directory;
  const std::string path = directory.path("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  // More than a pipe holds at once.
  const std::string content(300'000, 'z');
  std::thread writer([&] { std::ofstream(path) << content; });
  const std::string read = load_file(path);
  writer.join();
  EXPECT_EQ(read, content);
}

TEST(LoadStream, GivesTheRestOfAStream) {
  std::istringstream stream("skip " + kText);
  std::string word;
  stream >> word;
  EXPECT_EQ(load_stream(stream, "x"), " " + kText);
}

TEST(LoadStream, StopsAtTheLimit) {
  std::istringstream stream(std::string(2 << 20, 'x'));
  EXPECT_TRUE(
      contains(complaint(ErrorCode::kCannotRead, [&] { load_stream(stream, "<input>", 1 << 20); }),
               "<input>: holds more than 1 MiB"));
}

TEST(Source, IsTheSameChainWhateverItIsKeptIn) {
  const TemporaryDirectory directory;
  const std::vector<korvex::Chain> wanted =
      read_chains(Source::memory(kText, directory.path("chain")));
  ASSERT_EQ(wanted.at(0).points.size(), 3U);
  std::istringstream stream(kText);
  EXPECT_EQ(read_chains(Source::stream(stream, directory.path("chain"))), wanted);
  EXPECT_EQ(korvex::read_chains(directory.write("chain", kText)), wanted);
  EXPECT_EQ(korvex::read_chains(directory.write("chain", gzip(kText))), wanted);
}

TEST(Source, MessagesNameIt) {
  std::istringstream stream("0 0 0\n1 0\n");
  const std::string what = complaint(
      ErrorCode::kBadInput, [&] { read_chains(Source::stream(stream, "standard input")); });
  EXPECT_TRUE(contains(what, "standard input:2: expected `id x y z` or `x y z`"));
}

TEST(Source, SaysWhatIsPackedTwiceOrIsAnArchive) {
  const auto what = [](const std::string& bytes) {
    return complaint(ErrorCode::kBadInput,
                     [&] { korvex::read_chains(korvex::Source::memory(bytes, "x.gz")); });
  };
  EXPECT_TRUE(contains(what(gzip(gzip(kText))), "x.gz: is compressed with gzip twice"));
  std::string tar(1024, '\0');
  tar.replace(0, 5, "chain");
  tar.replace(257, 5, "ustar");
  tar.replace(512, 6, "0 0 0\n");
  EXPECT_TRUE(contains(what(gzip(tar)), "x.gz: is a tar archive"));
  EXPECT_TRUE(contains(what("0 0 0\n1 0 "s + '\0' + "0\n"), "x.gz:2: is not text"));
}

TEST(Source, MayBeginWithAByteOrderMarkAndEndInZeros) {
  const auto points = [](const std::string& bytes) {
    return korvex::read_chains(korvex::Source::memory(bytes, "x")).at(0).points;
  };
  const auto wanted = points("0 0 0\n1 0 0\n");
  EXPECT_EQ(points("\xef\xbb\xbf"
                   "0 0 0\n1 0 0\n"),
            wanted);
  EXPECT_EQ(points("0 0 0\n1 0 0\n" + std::string(500, '\0')), wanted);
  EXPECT_EQ(points("0 0 0\n1 0 0" + std::string(1, '\0')), wanted);
}

TEST(Source, MayEndItsLinesAsAnySystemDoes) {
  const auto points = [](const std::string& bytes) {
    return korvex::read_chains(korvex::Source::memory(bytes, "x")).at(0).points;
  };
  const auto wanted = points("0 0 0\n1 0 0\n2 0 0\n");
  for (const char* text : {"0 0 0\r1 0 0\r2 0 0\r", "0 0 0\r1 0 0\r2 0 0\n",
                           "0 0 0\r\n1 0 0\r\n2 0 0\r\n", "0 0 0\r\r\n1 0 0\r\r\n2 0 0"}) {
    EXPECT_EQ(points(text), wanted) << text;
  }
  const std::string what = complaint(ErrorCode::kBadInput, [] {
    korvex::read_chains(korvex::Source::memory("0 0 0\r1 0 0\rx 0 0\n", "x"));
  });
  EXPECT_TRUE(contains(what, "x:3: ")) << what;
}

}  // namespace
