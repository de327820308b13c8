// One parsed request record, as the log reader hands it to `mdlMonth::AddHit`.
#ifndef HITWICK_STATS_LOG_RECORD_H_
#define HITWICK_STATS_LOG_RECORD_H_

#include <cstdint>
#include <string_view>

namespace stats {

// Texts are views into the reader's buffers, valid for the call only; "-" is the log's mark for an
// empty value and stays as it is. Date and time are those of the report's zone.
struct LogRecord {
  std::int16_t month = 0;
  std::int16_t day = 0;
  std::int16_t hour = 0;
  std::int16_t minute = 0;  // may be negative or above 59 in zones that are off by half an hour
  std::int16_t second = 0;  // the reader leaves it 0
  std::string_view clientAddress;
  std::string_view method;
  std::string_view uriStem;
  std::string_view searchKeywords;
  std::string_view status;
  std::int32_t bytesSent = 0;
  std::int32_t bytesReceived = 0;
  std::int32_t timeTaken = 0;  // milliseconds
  std::string_view userAgent;
  std::string_view referrer;
  std::string_view hostLabel;  // " [" host "] ", or empty
  std::string_view userName;
};

}  // namespace stats

#endif  // HITWICK_STATS_LOG_RECORD_H_
