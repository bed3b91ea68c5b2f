// What the driver writes about the controllers of a station.

#include "comm/station_result_file.h"

#include "platform/datetime.h"
#include "platform/files.h"
#include "platform/text.h"
#include "require.h"
#include "support/installation_test.h"

namespace voxa::fuzz {
namespace {

class StationResults : public test::InstallationTest {
 public:
  void check(const std::string& bytes) {
    const StationResult result = readResult(bytes);
    files::Stream file(name, files::Stream::Mode::read);
    const std::string statuses = file.atEnd() ? "" : file.readLine();
    for (std::size_t i = 0; i < result.statuses.size(); ++i) {
      const char written = i < statuses.size() ? statuses[i] : '\0';
      require(result.statuses[i] == written, "each controller has the character at its place");
    }
    std::string again(result.statuses.begin(), result.statuses.end());
    again += "\r\n";
    for (std::int16_t address = 1; address <= StationResult::controllers; ++address) {
      const auto date = result.date(address);
      if (date) again += "    " + zeroPadded(address, 4) + formatDateTime(*date, "hhnnddmmyy") + "\r\n";
    }
    require(readResult(again).dates == result.dates, "the dates come back as they were");
  }

 private:
  static constexpr const char* name = "RS001.OUT";

  StationResult readResult(const std::string& bytes) {
    write(name, bytes);
    return readStationResult(*library, name);
  }
  void TestBody() override {}
};

}  // namespace
}  // namespace voxa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static voxa::fuzz::StationResults results;
  results.check({reinterpret_cast<const char*>(data), size});
  return 0;
}
