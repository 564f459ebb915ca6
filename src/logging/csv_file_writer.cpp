#include "logging/csv_file_writer.h"

#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/vb_format.h"

namespace sentrune {
namespace {

constexpr const char* kDefaultFolder = "C:\\Olk\\Data\\";
constexpr const char* kUnknown = "Unknown";

}  // namespace

int32_t clsCSVFileWriter::Report(const rt::VbError& error, const std::string& where) {
  lfncMsgBoxEX(state_, "Error " + std::to_string(error.number) + "\r\n" + error.description + where,
               platform::mb::kCritical, "clsLogFileWriter");
  return error.number;
}

int32_t clsCSVFileWriter::InitializeLog(const std::string& fileName, int16_t logMode,
                                        int32_t existingFileRule) {
  initialized_ = false;
  const size_t slash = fileName.rfind('\\');
  std::string folder = slash == std::string::npos ? kDefaultFolder : fileName.substr(0, slash + 1);
  std::string name = slash == std::string::npos ? fileName : fileName.substr(slash + 1);
  if (const rt::Status made = state_.files().MakeSureDirectoryPathExists(folder); !made.ok())
    return Report(made.error(), " - clsLogFileWriter:InitializeLog");
  if (name.find('.') == std::string::npos) {
    name += (DefaultFileExtension.starts_with(".") ? "" : ".") + DefaultFileExtension;
  }
  path_ = folder + name;
  logMode_ = logMode;
  existingFileRule_ = existingFileRule;
  if (logMode_ != 0) {
    if (const rt::Status opened = OpenFile(); !opened.ok())
      return Report(opened.error(), " - clsLogFileWriter:InitializeLog");
  }
  ReleaseFile();
  initialized_ = true;
  return 0;
}

rt::Status clsCSVFileWriter::OpenFile() {
  if (fileNumber_ != 0) return rt::MakeError(kErrAlreadyOpen, "File already open", "clsLogFileWriter");
  bool overwrite = existingFileRule_ == 2;
  if (existingFileRule_ != 1 && existingFileRule_ != 2) {
    overwrite = true;
    if (state_.files().GetAttributes(path_).ok()) {
      const int answer = lfncMsgBoxEX(
          state_,
          "File '" + path_ + "' already exists.\r\n\r\nDo you want to over write this file?\r\n" +
              "Click 'Yes' to over write, 'No' to append or 'Cancel' to enter a new filename.",
          platform::mb::kYesNoCancel + platform::mb::kQuestion + DefaultButton, "File Exists");
      if (answer == platform::mb::kCancel || answer == 0)
        return rt::MakeError(kErrCancelled, "Cancelled", "clsLogFileWriter");
      overwrite = answer == platform::mb::kYes;
    }
  }
  const rt::Status opened =
      overwrite ? state_.files().WriteFile(path_, "") : state_.files().AppendFile(path_, "");
  if (!opened.ok()) return opened;
  fileNumber_ = 1;
  if (HeaderSuppressed) return {};
  const std::string separator = DataFormat == 1 ? "," : DefaultDelimiter;
  const rt::DateTime now = state_.env().Time().Now();
  if (rt::Status s = WriteLine(" --- Begin Log ---"); !s.ok()) return s;
  return WriteLine(std::string("Model: ") + kUnknown + separator + "Serial Number: " + kUnknown +
                   separator + "Date: " + rt::Format(now, "Short Date") + separator +
                   "Time: " + rt::Format(now, "Medium Time"));
}

void clsCSVFileWriter::ReleaseFile() {
  if (logMode_ == 2) return;
  fileNumber_ = 0;
}

rt::Status clsCSVFileWriter::ReopenFile() {
  if (fileNumber_ != 0 || !initialized_ || path_.empty()) return {};
  if (logMode_ == 0) return {};
  rt::Status opened = state_.files().AppendFile(path_, "");
  if (opened.ok()) fileNumber_ = 1;
  return opened;
}

rt::Status clsCSVFileWriter::WriteLine(const std::string& line) {
  return state_.files().AppendFile(path_, rt::Utf8ToCp1252(line + "\r\n"));
}

std::string clsCSVFileWriter::FormatValue(const std::string& value) const {
  if (DataFormat != 1) return value;
  std::string text = rt::Trim(value);
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  if (quoted) text = text.substr(1, text.size() - 2);
  const bool hadQuote = text.find('"') != std::string::npos;
  text = rt::Replace(text, "\"", "\"\"");
  if (quoted) return "\"\"\"" + text + "\"\"\"";
  if (hadQuote || text.find(',') != std::string::npos) return "\"" + text + "\"";
  return text;
}

int32_t clsCSVFileWriter::WriteLogData(const std::string& key, const std::string& data) {
  rt::Status status = ReopenFile();
  if (status.ok() && logMode_ != 0) {
    status = WriteLine(key + (DataFormat == 1 ? "," : KVSeperator) + FormatValue(data));
  }
  ReleaseFile();
  return status.ok() ? 0 : Report(status.error(), "");
}

int32_t clsCSVFileWriter::WriteLogEntries(const std::vector<std::string>& items) {
  rt::Status status = ReopenFile();
  if (status.ok() && logMode_ != 0) {
    std::string line;
    for (size_t i = 0; i < items.size(); ++i) line += (i ? DefaultDelimiter : "") + FormatValue(items[i]);
    status = WriteLine(line);
  }
  ReleaseFile();
  return status.ok() ? 0 : Report(status.error(), "");
}

int32_t clsCSVFileWriter::WriteLogEntries(const std::string& value) {
  rt::Status status = ReopenFile();
  if (status.ok() && logMode_ != 0) status = WriteLine(FormatValue(value));
  ReleaseFile();
  return status.ok() ? 0 : Report(status.error(), "");
}

int32_t clsCSVFileWriter::CloseLog() {
  rt::Status status;
  if (initialized_) {
    status = ReopenFile();
    if (status.ok() && logMode_ != 0 && !FooterSuppressed) status = WriteLine(" --- End Log ---");
  }
  fileNumber_ = 0;
  logMode_ = 0;
  existingFileRule_ = 0;
  path_.clear();
  initialized_ = false;
  return status.ok() ? 0 : Report(status.error(), "");
}

}  // namespace sentrune
