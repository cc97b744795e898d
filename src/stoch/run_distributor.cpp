#include "stoch/run_distributor.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace ovaro {

int RunShares::total() const {
  int sum = 0;
  for (int w : weights) sum += w;
  return sum;
}

std::pair<int, int> RunShares::slice(int r, int count) const {
  const long long all = total();
  if (all <= 0) return {0, 0};
  long long before = 0;
  for (int q = 0; q < r; ++q) before += weights[static_cast<std::size_t>(q)];
  const long long upto = before + weights[static_cast<std::size_t>(r)];
  return {static_cast<int>(count * before / all), static_cast<int>(count * upto / all)};
}

RunShares RunDistributor::join(bool takingPart, int runs, int threads) {
  joined_ = true;
  const std::vector<long long> all = allGather({takingPart ? 1 : 0, runs, threads});
  const int n = size();
  RunShares shares;
  shares.rank = rank();
  shares.weights.assign(static_cast<std::size_t>(n), 0);
  bool everyone = true;
  for (int r = 0; r < n; ++r) {
    const auto at = static_cast<std::size_t>(3 * r);
    everyone = everyone && all[at] == 1 && all[at + 1] == all[1];
  }
  for (int r = 0; r < n; ++r) {
    const auto at = static_cast<std::size_t>(3 * r);
    if (everyone || (r == 0 && all[at] == 1))
      shares.weights[static_cast<std::size_t>(r)] = std::max(1, static_cast<int>(all[at + 2]));
  }
  return shares;
}

void RunRecordWriter::raw(const void* data, std::size_t size) {
  const auto* p = static_cast<const unsigned char*>(data);
  bytes_.insert(bytes_.end(), p, p + size);
}

void RunRecordWriter::put(bool value) {
  put(value ? 1 : 0);
}
void RunRecordWriter::put(int value) {
  raw(&value, sizeof value);
}
void RunRecordWriter::put(double value) {
  raw(&value, sizeof value);
}

void RunRecordWriter::put(const std::string& value) {
  put(static_cast<int>(value.size()));
  raw(value.data(), value.size());
}

void RunRecordWriter::put(const Mat& value) {
  put(value.rlo());
  put(value.rhi());
  put(value.clo());
  put(value.chi());
  for (int i = value.rlo(); i <= value.rhi(); ++i)
    for (int j = value.clo(); j <= value.chi(); ++j) put(value(i, j));
}

void RunRecordWriter::put(const Message& value) {
  put(value.text);
  put(value.caption);
  put(static_cast<int>(value.icon));
  put(static_cast<int>(value.buttons));
  put(static_cast<int>(value.defaultAnswer));
}

void RunRecordReader::raw(void* data, std::size_t size) {
  if (size > bytes_.size() - at_)
    throw std::runtime_error("a run record from another process is cut short");
  std::memcpy(data, bytes_.data() + at_, size);
  at_ += size;
}

bool RunRecordReader::getBool() {
  return getInt() != 0;
}

int RunRecordReader::getInt() {
  int value = 0;
  raw(&value, sizeof value);
  return value;
}

double RunRecordReader::getDouble() {
  double value = 0.0;
  raw(&value, sizeof value);
  return value;
}

std::string RunRecordReader::getString() {
  const int size = getInt();
  if (size < 0) throw std::runtime_error("a run record from another process is damaged");
  std::string value(static_cast<std::size_t>(size), '\0');
  raw(value.data(), value.size());
  return value;
}

Mat RunRecordReader::getMat() {
  // An empty range keeps its bounds: a model without uncertain parameters has 0 rows of
  // periods 0..nt.
  const int rlo = getInt(), rhi = getInt(), clo = getInt(), chi = getInt();
  const long long rows = std::max(0, rhi - rlo + 1), cols = std::max(0, chi - clo + 1);
  if (rows * cols * static_cast<long long>(sizeof(double)) >
      static_cast<long long>(bytes_.size() - at_))
    throw std::runtime_error("a run record from another process is cut short");
  Mat value = mat2(rlo, rhi, clo, chi);
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j) value(i, j) = getDouble();
  return value;
}

Message RunRecordReader::getMessage() {
  Message m;
  m.text = getString();
  m.caption = getString();
  m.icon = static_cast<Icon>(getInt());
  m.buttons = static_cast<Buttons>(getInt());
  m.defaultAnswer = static_cast<Answer>(getInt());
  return m;
}

}  // namespace ovaro
