// The text-file objects every record reader and writer goes through.
//
// Format: see docs/formats/quoted-items.md (item mode and the quoted item
// form) and docs/formats/record-lines.md (whole lines).
//
// TextReader loads a file whole and serves it in two modes that may be
// mixed freely:
//   - whole-line reading: the line without its end; CR LF, lone CR and lone
//     LF all end a line; a last line without a line end is returned; a read
//     at the end of the file fails;
//   - item reading: spaces and tabs are skipped; a double quote starts a
//     quoted item running to the next double quote (commas and line ends
//     inside are kept), after which spaces and tabs are skipped and one
//     comma or one line end is consumed (anything else is left for the next
//     read); an unquoted item runs to a comma or a line end, loses its
//     trailing spaces, and the comma or line end is consumed. A
//     blank line reads as one empty item, NUL bytes are dropped from items,
//     and a read at the end of the file fails. Readers of several items on
//     one line (the quoted item form) use ReadItem(), which leaves the rest
//     after a comma for the next read; readers that take one value from a
//     tagged line use ReadFirstItem(), which skips the rest of that line.
//
// TextWriter writes a new file beside its target and renames it over the
// target on Commit(), so another process sees the old file or the new one,
// never a mix. A writer destroyed or abandoned before Commit() removes its
// temporary file and leaves the target untouched. Writing to a symbolic
// link replaces the file the link points to; the link stays. Temporary files
// of writes in flight are listed, so that a program ended by a signal can
// remove them (RemoveTemporaryFiles()).
//
// Thread safety: a reader or writer object is used by one thread at a time;
// separate objects are independent. A thread keeps the buffers of up to two
// closed readers or writers (of at most 256 KiB each) for its next ones, so
// that a batch of small files is read and written without allocating a
// buffer for each; they are freed when the thread ends.

#ifndef PELINOR_TEXT_FILE_H_
#define PELINOR_TEXT_FILE_H_

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace pelinor {

class TextReader {
 public:
  TextReader() = default;
  ~TextReader();
  TextReader(const TextReader&) = delete;
  TextReader& operator=(const TextReader&) = delete;
  TextReader(TextReader&& other) noexcept;
  TextReader& operator=(TextReader&& other) noexcept;

  // Open()
  //
  // Loads the file at `path`; false (and closed) when it cannot be read.
  bool Open(const std::string& path);

  // OpenText()
  //
  // Serves `data` as if it were a file's contents.
  void OpenText(std::string data);

  // Close()
  //
  // Releases the contents; the reader reads nothing until opened again.
  void Close();

  bool IsOpen() const { return open_; }

  // AtEnd()
  //
  // True when every byte has been consumed (the end-of-file test).
  bool AtEnd() const { return pos_ >= data_.size(); }

  // Rewind()
  // Tell()
  // Seek()
  //
  // The zero-based byte position of the next read. Seek() clamps to the
  // end of the contents.
  void Rewind() { Seek(0); }
  size_t Tell() const { return pos_; }
  void Seek(size_t pos) { pos_ = pos < data_.size() ? pos : data_.size(); }

  // Data()
  //
  // The whole contents, for routines that search a file as one text. Valid
  // until the reader is closed, reopened or destroyed.
  std::string_view Data() const { return data_; }

  // ReadLine()
  //
  // Whole-line reading; see the file comment. False at the end of the file.
  bool ReadLine(std::string& line);

  // ReadItem()
  //
  // Item reading; see the file comment. `quoted`, when given, tells whether
  // the item was written in double quotes. False at the end of the file.
  bool ReadItem(std::string& item);
  bool ReadItem(std::string& item, bool& quoted);

  // ReadFirstItem()
  //
  // First-item reading of a tagged line, for readers that take one value
  // per line: reads one item as ReadItem() does, then skips what is left
  // of its line. A comma therefore cuts the value and the next read starts
  // on the next line, so a comma in a name never shifts the lines after
  // it. A quoted item keeps its commas and line ends, and the rest of the
  // line its closing quote is on is skipped. False at the end of the file.
  bool ReadFirstItem(std::string& item);

  // ReadLineView()
  // ReadFirstItemView()
  //
  // ReadLine() and ReadFirstItem() without the copy, for readers that
  // convert or keep only part of what they read. `text` views the reader's
  // contents (or a buffer of the reader's own when NUL bytes had to be
  // dropped) and stays valid until the next read, Seek(), Close() or Open().
  bool ReadLineView(std::string_view& text);
  bool ReadFirstItemView(std::string_view& text);

  // ReadBool()
  //
  // Reads one item as a Boolean: "#TRUE#" / "#FALSE#", "True" / "False"
  // (any case), or a numeric item (zero is false, anything else true).
  // Any other item is consumed and the read fails with `value` untouched.
  bool ReadBool(bool& value);

  // ReadLong()
  // ReadInteger()
  // ReadSingle()
  // ReadDouble()
  //
  // Read one item and convert it by the numeric rule (numeric.h). A
  // non-numeric or out-of-range item is consumed and the read fails with
  // `value` untouched. "#TRUE#" reads as -1 and "#FALSE#" as 0.
  bool ReadLong(int32_t& value);
  bool ReadInteger(int16_t& value);
  bool ReadSingle(float& value);
  bool ReadDouble(double& value);

 private:
  // Consumes one line end (CR LF, CR or LF) at the position, if any.
  // (Inline functions here are defined and used in text_file.cpp only.)
  inline void SkipLineEnd();

  // The position of the first CR or LF at or after the position (the size
  // of the contents when there is none).
  size_t LineEnd() const;

  // Consumes everything up to and including the next line end.
  void SkipRestOfLine();

  // Item reading; with `whole_line`, the rest of the item's line is
  // skipped (ReadFirstItem()). `item` views the item as it stands in the
  // contents, NUL bytes included.
  inline bool ReadItemSpan(std::string_view& item, bool& quoted,
                           bool whole_line);

  // ReadItemSpan() with the NUL bytes dropped: into `item`, or viewed in
  // place (or in scratch_) by the View() form.
  bool ReadItemImpl(std::string& item, bool& quoted, bool whole_line);
  bool ReadItemView(std::string_view& item, bool whole_line);

  std::string owned_;             // contents given to OpenText()
  std::unique_ptr<char[]> read_;  // or read from a file
  size_t read_capacity_ = 0;
  void* map_ = nullptr;  // or mapped from a large file
  size_t map_size_ = 0;
  std::string_view data_;  // whichever of the three holds the contents
  size_t pos_ = 0;
  std::string scratch_;    // reused by the typed and view reads
  bool has_nuls_ = false;  // whether NUL bytes have to be dropped
  bool open_ = false;
};

// ItemValue
//
// One item of a quoted-item line: a text (written in double quotes with no
// escaping), a number (plain decimal, see NumberText()) or a Boolean
// ("#TRUE#" / "#FALSE#").
class ItemValue {
 public:
  ItemValue(std::string_view text) : v_(text) {}
  ItemValue(const char* text) : v_(std::string_view(text)) {}
  ItemValue(const std::string& text) : v_(std::string_view(text)) {}
  ItemValue(bool b) : v_(b) {}
  ItemValue(int16_t n) : v_(static_cast<int64_t>(n)) {}
  ItemValue(int32_t n) : v_(static_cast<int64_t>(n)) {}
  ItemValue(int64_t n) : v_(n) {}
  ItemValue(float f) : v_(f) {}
  ItemValue(double d) : v_(d) {}

  // AppendTo()
  //
  // Appends the item's written form to `out`.
  void AppendTo(std::string& out) const;

 private:
  std::variant<std::string_view, bool, int64_t, float, double> v_;
};

// LinePart
//
// One piece of a line for TextWriter::WriteLineParts(): a text written as
// it stands, or an integer in the form of NumberText() (numeric.h). Holds a
// view: the text must outlive the call.
class LinePart {
 public:
  LinePart(std::string_view text) : text_(text) {}
  LinePart(const char* text) : text_(text) {}
  LinePart(const std::string& text) : text_(text) {}
  LinePart(int32_t n) : number_(n), is_number_(true) {}
  LinePart(int64_t n) : number_(n), is_number_(true) {}

 private:
  friend class TextWriter;

  std::string_view text_;
  int64_t number_ = 0;
  bool is_number_ = false;
};

class TextWriter {
 public:
  TextWriter() = default;
  ~TextWriter();
  TextWriter(const TextWriter&) = delete;
  TextWriter& operator=(const TextWriter&) = delete;

  // Create()
  //
  // Starts a new file that replaces `path` on Commit(). The temporary file
  // lies in the same directory. False when it cannot be created.
  bool Create(const std::string& path);

  // CreateWhenNeeded()
  //
  // As Create(), but the temporary file is made only when the buffered
  // bytes are first flushed, or at the commit: a CommitIfChanged() that
  // finds the target holding the bytes already then makes and removes no
  // file at all. A failure to make the temporary file shows there, with
  // temp_failed() true.
  bool CreateWhenNeeded(const std::string& path);

  bool IsOpen() const { return started_; }

  // WriteLine()
  //
  // Writes `line` followed by CR LF.
  void WriteLine(std::string_view line);

  // WriteLineParts()
  //
  // Writes the parts one after another, followed by CR LF: the line that
  // WriteLine() would write for their concatenation, without building it.
  void WriteLineParts(std::initializer_list<LinePart> parts);

  // Write()
  //
  // Writes `text` as it stands, with no line end.
  void Write(std::string_view text);

  // WriteItems()
  //
  // Writes one quoted-item line: the items joined by "," and CR LF.
  void WriteItems(std::initializer_list<ItemValue> items);

  // Commit()
  //
  // Flushes and renames the file over its target. Returns false when any
  // write so far or the rename failed; the temporary file is then removed
  // and the target left as it was.
  bool Commit();

  // CommitIfChanged()
  //
  // As Commit(), except that a target that already holds exactly the bytes
  // written is left untouched (not replaced, so its time stamps and links
  // stay as they were) and the temporary file is removed; `unchanged` then
  // says so. Costs a read of the target when it has the new size.
  bool CommitIfChanged(bool& unchanged);

  // Abandon()
  //
  // Removes the temporary file; the target is left as it was.
  void Abandon();

  // ok()
  //
  // False once a write has failed.
  bool ok() const { return ok_; }

  // error()
  //
  // The system error number of the first failure (0 when none).
  int error() const { return error_; }

  // temp_failed()
  //
  // True when the temporary file could not be made.
  bool temp_failed() const { return temp_failed_; }

 private:
  // Create() without the temporary file; MakeTemp() makes it.
  bool Start(const std::string& path);
  bool MakeTemp();
  void Flush();
  void Fail(int error);

  // Makes room for `n` more bytes after the buffered ones; Grow() is its
  // rare part.
  inline void Reserve(size_t n);
  void Grow(size_t n);

  // Hands the buffer back for the next writer or reader of the thread.
  void ReleaseBuffer();

  // Whether the target holds exactly what was written: the buffered bytes,
  // after any flushed to the temporary file.
  bool TargetHoldsTheSame();

  // Removes the temporary file and forgets it.
  void RemoveTemp();

  int fd_ = -1;
  // Between a successful Create() or CreateWhenNeeded() and the end of the
  // commit or Abandon(); the temporary file may not exist yet.
  bool started_ = false;
  bool ok_ = false;
  bool temp_failed_ = false;
  uint32_t mode_ = 0644;  // the temporary file's permissions
  // The target's size when Create() found it a regular file, else -1; and
  // the bytes flushed to the temporary file so far.
  int64_t target_size_ = -1;
  uint64_t flushed_ = 0;
  int error_ = 0;
  int slot_ = -1;  // place in the list of temporary files in flight
  std::string target_;
  std::string temp_;
  // The bytes not yet written: the first used_ of capacity_.
  std::unique_ptr<char[]> buffer_;
  size_t used_ = 0;
  size_t capacity_ = 0;
};

// LastFileError()
//
// The system error number of the latest failed open of a TextReader or
// failed write of a TextWriter on the calling thread, so that a program can
// say why a reader or writer answered with its fixed message; 0 when none
// failed since ClearFileError().
int LastFileError();
void ClearFileError();

// RemoveTemporaryFiles()
//
// Removes the temporary files of every TextWriter between Create() and the
// end of its Commit() or Abandon(), in any thread. Only calls unlink(), so a
// signal handler may call it; a program that ends on SIGTERM, SIGINT or
// SIGHUP calls it before it goes, so that no ".<name>.tmp-XXXXXX" file is
// left behind. Writers of paths longer than 4095 bytes, and writers beyond
// the 256th at once, are not listed.
void RemoveTemporaryFiles();

}  // namespace pelinor

#endif  // PELINOR_TEXT_FILE_H_
