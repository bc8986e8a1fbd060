// The weather and radio lookups: the parsers with real-shaped, bad and hostile answers, and the
// lookups against a local HTTP server (answers, errors, silence, floods), down to the line in
// the channel.
#include <gtest/gtest.h>

#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "support/ScriptedPrompter.h"
#include "web/LocalHttpServer.h"
#include "web/RadioInfo.h"
#include "web/WeatherReport.h"
#include "web/WebLookups.h"

namespace tavren {
namespace {

// Shaped like wttr.in's "format=j1" answer (cut to the parts that matter, values as text).
const QByteArray kWeatherAnswer = R"({
  "current_condition": [{
    "FeelsLikeC": "17", "humidity": "72", "observation_time": "03:15 PM",
    "temp_C": "18", "temp_F": "64", "weatherCode": "116",
    "weatherDesc": [{"value": "Partly cloudy"}],
    "winddir16Point": "WSW", "windspeedKmph": "11", "windspeedMiles": "7"
  }],
  "nearest_area": [{
    "areaName": [{"value": "Beverly Hills"}], "country": [{"value": "United States of America"}],
    "latitude": "34.073", "longitude": "-118.400", "region": [{"value": "California"}]
  }],
  "request": [{"query": "Lat 34.09 and Lon -118.41", "type": "LatLon"}],
  "weather": []
})";

// Shaped like an Icecast server's /status-json.xsl with two streams.
const QByteArray kStationAnswer = R"({"icestats":{
  "admin":"icemaster@localhost","host":"radio.example","server_id":"Icecast 2.4.4",
  "source":[
    {"genre":"Jazz","listeners":3,"listenurl":"http://radio.example:8000/jazz","server_name":"Late Jazz","title":"Bill Evans - Peace Piece"},
    {"genre":"Ambient","listeners":41,"listenurl":"http://radio.example:8000/chill.mp3","server_name":"Chill Room","artist":"Boards of Canada","title":"Dayvan Cowboy"}
  ]}})";

TEST(WeatherReportTest, ReadsTheServicesAnswerAndRefusesWhatIsNotOne) {
    const auto report = WeatherReport::parse(kWeatherAnswer);
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->line(), QStringLiteral("Beverly Hills, California, United States of "
                                             "America: Partly cloudy, 18\u00B0C (64\u00B0F), "
                                             "humidity 72%, wind 11 km/h WSW"));
    // Numbers as JSON numbers, a missing area, a missing wind: what is there is said.
    const auto numbers = WeatherReport::parse(
        R"({"current_condition":[{"temp_C":-3.6,"temp_F":25.5,"weatherDesc":[{"value":"Snow"}]}]})");
    ASSERT_TRUE(numbers.has_value());
    EXPECT_EQ(numbers->line(), QStringLiteral("Snow, -4\u00B0C (26\u00B0F)"));
    // Not JSON, not an object, no current condition, fields of the wrong kind.
    for (const QByteArray& bad :
         {QByteArray("<html>Service unavailable</html>"), QByteArray("[1,2,3]"), QByteArray(""),
          QByteArray(R"({"current_condition":[]})"),
          QByteArray(R"({"current_condition":[{"temp_C":{"x":1},"weatherDesc":7}]})"),
          QByteArray(R"({"current_condition":[{"temp_C":"1e400"}]})")}) {
        EXPECT_FALSE(WeatherReport::parse(bad).has_value()) << bad.toStdString();
    }
    // A page's worth of description is cut; markup stays text (the channel escapes it).
    const auto hostile =
        WeatherReport::parse(R"({"current_condition":[{"temp_C":"1","weatherDesc":[{"value":")" +
                             QByteArray(500, 'x') + R"(<script>"}]}]})");
    ASSERT_TRUE(hostile.has_value());
    EXPECT_LE(hostile->description.size(), 80);
}

TEST(RadioInfoTest, PicksTheChosenStreamOrTheFirstOnTheAir) {
    const auto chill = RadioInfo::parse(kStationAnswer, QUrl("https://radio.example/chill.mp3"));
    ASSERT_TRUE(chill.has_value());
    EXPECT_EQ(chill->line(),
              QStringLiteral("Now playing on Chill Room: Boards of Canada - Dayvan Cowboy "
                             "(41 listeners)"));
    const auto first = RadioInfo::parse(kStationAnswer, QUrl("https://radio.example/other"));
    ASSERT_TRUE(first.has_value());
    EXPECT_EQ(first->station, QStringLiteral("Late Jazz"));
    // One stream is an object rather than a list.
    const auto single =
        RadioInfo::parse(R"({"icestats":{"source":{"server_name":"Solo","listeners":1}}})", QUrl());
    ASSERT_TRUE(single.has_value());
    EXPECT_EQ(single->line(),
              QStringLiteral("Now playing on Solo: (the station names no title) (1 listener)"));
    // No stream on the air, or not a status page at all.
    EXPECT_FALSE(RadioInfo::parse(R"({"icestats":{"admin":"x"}})", QUrl()).has_value());
    EXPECT_FALSE(RadioInfo::parse("garbage", QUrl()).has_value());
    EXPECT_FALSE(RadioInfo::parse(R"({"icestats":{"source":[1,"a",null]}})", QUrl()).has_value());
    EXPECT_EQ(RadioInfo::statusPageOf(QUrl("https://u:p@radio.example:8443/chill.mp3?x=1")),
              QUrl("https://radio.example:8443/status-json.xsl"));
}

TEST(WebLookupsTest, AddressesAreBuiltFromTheSettingsAndOnlyForTheWeb) {
    EXPECT_EQ(WebLookups::weatherAddress("https://wttr.in/{code}?format=j1", "90210"),
              QUrl("https://wttr.in/90210?format=j1"));
    EXPECT_EQ(WebLookups::weatherAddress("http://w.example/zip/", "02134"),
              QUrl("http://w.example/zip/02134"));
    EXPECT_FALSE(WebLookups::weatherAddress("file:///etc/{code}", "1").isValid());
    EXPECT_FALSE(WebLookups::weatherAddress("{code}", "1").isValid());
    EXPECT_EQ(WebLookups::radioInfoAddress("", "http://r.example:8000/live"),
              QUrl("http://r.example:8000/status-json.xsl"));
    EXPECT_EQ(WebLookups::radioInfoAddress("https://info.example/now", "http://r.example/live"),
              QUrl("https://info.example/now"));
    EXPECT_FALSE(WebLookups::radioInfoAddress("", "ftp://r.example/live").isValid());
}

class LookupFixture : public ::testing::Test {
  protected:
    LookupFixture() : lookups(network) { lookups.setTimeout(1500); }

    // Runs one weather lookup and returns its answer.
    std::tuple<QString, QString, bool> weather(const QString& path) {
        QSignalSpy answered(&lookups, &WebLookups::weatherAnswered);
        lookups.lookUpWeather(server.url(path).toString() + QStringLiteral("?code={code}"),
                              QStringLiteral("90210"), QStringLiteral("General"));
        if (answered.isEmpty()) {
            EXPECT_TRUE(answered.wait(5000));
        }
        if (answered.isEmpty()) {
            return {};
        }
        return {answered[0][0].toString(), answered[0][1].toString(), answered[0][2].toBool()};
    }

    test::LocalHttpServer server;
    QNetworkAccessManager network;
    WebLookups lookups;
};

TEST_F(LookupFixture, AnswersFailuresSilenceAndFloodsEachGiveOneClearLine) {
    server.answer("/ok", test::LocalHttpServer::reply(200, kWeatherAnswer));
    auto [channel, text, ok] = weather("/ok");
    EXPECT_TRUE(ok);
    EXPECT_EQ(channel, QStringLiteral("General"));
    EXPECT_TRUE(text.startsWith(QStringLiteral("Beverly Hills"))) << text.toStdString();
    EXPECT_TRUE(text.endsWith(QStringLiteral("(90210)"))) << text.toStdString();

    std::tie(channel, text, ok) = weather("/missing");
    EXPECT_FALSE(ok);
    EXPECT_EQ(text, QStringLiteral("The weather for 90210 could not be looked up: the service "
                                   "answered with HTTP status 404."));

    server.answer(
        "/html", test::LocalHttpServer::reply(200, "<html><body>Sorry</body></html>", "text/html"));
    std::tie(channel, text, ok) = weather("/html");
    EXPECT_FALSE(ok);
    EXPECT_TRUE(text.contains(QStringLiteral("not a weather report"))) << text.toStdString();

    test::LocalHttpServer::Answer silent;
    silent.silent = true;
    server.answer("/silent", silent);
    std::tie(channel, text, ok) = weather("/silent");
    EXPECT_FALSE(ok);
    EXPECT_TRUE(text.contains(QStringLiteral("did not answer in time"))) << text.toStdString();

    // Half an answer, then nothing: the deadline ends it too.
    test::LocalHttpServer::Answer stalled = test::LocalHttpServer::reply(200, kWeatherAnswer);
    stalled.stopAfter = 40;
    server.answer("/stalled", stalled);
    std::tie(channel, text, ok) = weather("/stalled");
    EXPECT_FALSE(ok);
    EXPECT_TRUE(text.contains(QStringLiteral("did not answer in time"))) << text.toStdString();

    server.answer("/flood", test::LocalHttpServer::reply(200, QByteArray(2 * 1024 * 1024, ' ')));
    std::tie(channel, text, ok) = weather("/flood");
    EXPECT_FALSE(ok);
    EXPECT_TRUE(text.contains(QStringLiteral("too large"))) << text.toStdString();

    // A redirect to anything but the web is not followed.
    test::LocalHttpServer::Answer away = test::LocalHttpServer::reply(302, "");
    away.location = "file:///etc/passwd";
    server.answer("/away", away);
    std::tie(channel, text, ok) = weather("/away");
    EXPECT_FALSE(ok);
}

TEST_F(LookupFixture, TheRadioLookupAsksTheStationsServer) {
    server.answer("/status-json.xsl", test::LocalHttpServer::reply(200, kStationAnswer));
    QSignalSpy answered(&lookups, &WebLookups::radioAnswered);
    const QUrl stream = server.url("/chill.mp3");
    lookups.lookUpRadio(QString(), stream.toString(), QString());
    ASSERT_TRUE(answered.wait(5000));
    EXPECT_EQ(answered[0][0].toString(), QString());
    EXPECT_EQ(answered[0][1].toString(),
              QStringLiteral("Now playing on Chill Room: Boards of Canada - Dayvan Cowboy "
                             "(41 listeners)"));
    EXPECT_TRUE(answered[0][2].toBool());
    lookups.lookUpRadio(QString(), QStringLiteral("mms://old.example/live"),
                        QStringLiteral("General"));
    ASSERT_EQ(answered.count(), 2);  // refused at once
    EXPECT_FALSE(answered[1][2].toBool());
}

// The whole way: typed in a channel, asked of the service, shown in that channel as text.
TEST(WebServicesTest, TheAnswerIsALineInTheChannelItWasAskedIn) {
    test::LocalHttpServer server;
    QByteArray hostile = kWeatherAnswer;
    hostile.replace("Partly cloudy", "<b>Bold</b> & <img src=x>");
    server.answer("/w/90210", test::LocalHttpServer::reply(200, hostile));
    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    ClientSession session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                          ConnectionOptions::deployment(), prompter);
    SettingsValues values = session.settings().values();
    values.weatherUrl = server.url("/w/").toString() + QStringLiteral("{code}");
    session.settings().setValues(values);
    for (const char* channel : {"General", "Other"}) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{protocol::server_to_client::kJoinedRoom,
                            WireText::toWire(QString::fromLatin1(channel))});
    }
    QSignalSpy lines(&session.rooms(), &RoomSession::lineAdded);
    session.web().lookUpWeather(QStringLiteral("General"), QStringLiteral("90210"));
    ASSERT_TRUE(lines.wait(5000));
    EXPECT_EQ(lines[0][0].toInt(),
              session.rooms().room(session.rooms().roomIndex("General")).paneIndex);
    const QString html = lines[0][1].toString();
    EXPECT_TRUE(html.contains(QStringLiteral("Weather: "))) << html.toStdString();
    EXPECT_TRUE(html.contains(QStringLiteral("&lt;b&gt;Bold&lt;/b&gt; &amp; &lt;img src=x&gt;")))
        << html.toStdString();
    EXPECT_FALSE(html.contains(QStringLiteral("<img"))) << html.toStdString();
}

}  // namespace
}  // namespace tavren
