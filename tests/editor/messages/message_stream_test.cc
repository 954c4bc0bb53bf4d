#include "editor/messages/message_stream.h"

#include <gtest/gtest.h>

#include "editor/messages/answers.h"
#include "editor/messages/plain_bytes.h"
#include "editor/messages/requests.h"
#include "host/base/error.h"

namespace kelto::editor {
namespace {

std::string Bytes(MessageKind kind, const std::string& body) {
  return MessageHead(kind, body.size()) + body;
}

TEST(MessageReader, GivesMessagesHoweverTheirBytesCome) {
  const std::string bytes = Bytes(MessageKind::kPlan, "film") + Bytes(MessageKind::kWay, "") +
                            Bytes(MessageKind::kFailed, std::string(3000, 'x'));
  for (const size_t step : {size_t{1}, size_t{7}, bytes.size()}) {
    MessageReader reader;
    std::vector<StreamMessage> messages;
    for (size_t at = 0; at < bytes.size(); at += step) {
      reader.Add(std::string_view(bytes).substr(at, step));
      while (auto message = reader.Next()) messages.push_back(*message);
    }
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_EQ(messages[0].kind, MessageKind::kPlan);
    EXPECT_EQ(messages[0].body, "film");
    EXPECT_EQ(messages[1].kind, MessageKind::kWay);
    EXPECT_EQ(messages[2].body, std::string(3000, 'x'));
  }
}

TEST(MessageReader, RefusesWhatIsNoMessage) {
  MessageReader reader;
  reader.Add("Warning: a library has printed this");
  EXPECT_THROW(reader.Next(), host::Error);
  MessageReader endless;
  endless.Add(MessageHead(MessageKind::kFrame, size_t{1} << 40));
  EXPECT_THROW(endless.Next(), host::Error);
}

TEST(Answers, ReadBackAsTheyWereWritten) {
  const DrawRequest request{12, {960, 540}, 0.5};
  const DrawRequest read = DrawRequestOf(BodyOf(request));
  EXPECT_EQ(read.frame, 12);
  EXPECT_EQ(read.size, request.size);
  EXPECT_EQ(read.quality, 0.5);
  const FilmWay way = {{0.0, {1.0, 2.0, 3.0, 4.0}, 0.5}, {1.0, {5.0, 6.0, 7.0, 8.0}, 0.0}};
  EXPECT_EQ(WayOf(BodyOf(way)), way);
  EXPECT_TRUE(WayOf(BodyOf(FilmWay{})).empty());
}

TEST(Answers, ASizeIsOneThatAPhotoCanHave) {
  EXPECT_EQ(SizeOf(BodyOf(PixelSize{32767, 1})), (PixelSize{32767, 1}));
  for (const PixelSize size : {PixelSize{0, 10}, {10, -1}, {32768, 10}}) {
    EXPECT_THROW(SizeOf(BodyOf(size)), host::Error);
  }
  EXPECT_THROW(SizeOf("short"), host::Error);
}

TEST(Answers, HaveAsManyPixelsAsTheySay) {
  const PictureHead head{3, {2, 1}};
  const std::string body = BytesOf(head) + "BGRABGRA";
  EXPECT_EQ(PictureOf(body).head.frame, 3);
  EXPECT_EQ(PictureOf(body).pixels[4], 'B');
  EXPECT_THROW(PictureOf(body + "B"), host::Error);
  EXPECT_THROW(PictureOf(BytesOf(head)), host::Error);
  EXPECT_THROW(PictureOf(BytesOf(PictureHead{0, {-2, -1}}) + "BGRABGRA"), host::Error);
  EXPECT_THROW(PictureOf("short"), host::Error);
}

}  // namespace
}  // namespace kelto::editor
