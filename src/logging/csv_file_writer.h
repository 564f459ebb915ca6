#pragma once
// clsCSVFileWriter: a text log or comma-separated file with a header block,
// one line per call and a footer. It names itself "clsLogFileWriter" in its
// messages.
#include <cstdint>
#include <string>
#include <vector>

#include "state/addin_state.h"

namespace sentrune {

class clsCSVFileWriter {
 public:
  // Error codes of its own, as the run time reports them.
  static constexpr int32_t kErrAlreadyOpen = 553648183;  // 0x21000037
  static constexpr int32_t kErrCancelled = 32755;

  explicit clsCSVFileWriter(AddinState& state) : state_(state) {}

  std::string KVSeperator = "\t";
  std::string DefaultFileExtension = ".log";
  int16_t DataFormat = 0;  // 1: comma-separated values
  std::string DefaultDelimiter = "\t";
  bool HeaderSuppressed = false;
  bool FooterSuppressed = false;
  int32_t DefaultButton = 0;

  bool LogInitialized() const { return initialized_; }
  const std::string& FullPathToLogFile() const { return path_; }

  // logMode: 0 off, 1 open for each write, 2 keep open until CloseLog.
  // existingFileRule: 1 append, 2 overwrite, anything else asks.
  int32_t InitializeLog(const std::string& fileName, int16_t logMode, int32_t existingFileRule);
  int32_t WriteLogData(const std::string& key, const std::string& data);
  // One line of items joined by DefaultDelimiter (an array), or one value.
  int32_t WriteLogEntries(const std::vector<std::string>& items);
  int32_t WriteLogEntries(const std::string& value);
  int32_t CloseLog();

  // The comma-mode quoting of one value (plain mode writes values unchanged).
  std::string FormatValue(const std::string& value) const;

 private:
  rt::Status OpenFile();
  void ReleaseFile();
  rt::Status ReopenFile();
  rt::Status WriteLine(const std::string& line);
  int32_t Report(const rt::VbError& error, const std::string& where);

  AddinState& state_;
  bool initialized_ = false;
  std::string path_;
  int fileNumber_ = 0;
  int16_t logMode_ = 0;
  int32_t existingFileRule_ = 0;
};

}  // namespace sentrune
