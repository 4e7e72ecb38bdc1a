// Copyright 2026 The Veltmark authors.

#include "rzselect/sample_data.h"

#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <set>
#include <string>
#include <vector>

#include "core/date_time.h"

namespace rz {
namespace {

// One limit that differs from the calculated default.
struct LimitSetting {
  LimitKind kind;
  char method;  // 'F' fixed (with value) or 'B' blank
  double value;
};

// A measured variable and how its values behave.
struct Measurement {
  const char* name;
  const char* units;
  int16_t length;
  int16_t decimals;
  double mean;
  double sigma;
  std::array<double, 3> shift_offset;  // in sigmas, per shift
  double daily_swing;                  // in sigmas, over the day
  const char* rules;
  std::vector<LimitSetting> limits;  // every other limit is calculated
  double max = 0;                    // acceptable range; 0 and 0 = none
  double min = 0;
};

const std::vector<Measurement>& Measurements() {
  using L = LimitKind;
  static const std::vector<Measurement> kMeasurements = {
      {"Fill Weight",
       "g",
       7,
       2,
       500.2,
       1.2,
       {0, 0.5, -0.3},
       0,
       "ABC",
       {{L::kUsl, 'F', 506},
        {L::kUcl, 'F', 503.6},
        {L::kTgt, 'F', 500},
        {L::kLcl, 'F', 496.4},
        {L::kLsl, 'F', 494}},
       520,
       480},
      {"Fill Level",
       "mm",
       6,
       1,
       120.1,
       0.9,
       {0, 0.4, -0.2},
       0,
       "AB",
       {{L::kUsl, 'F', 124}, {L::kTgt, 'F', 120}, {L::kLsl, 'F', 116}}},
      {"Cap Torque",
       "Nm",
       5,
       2,
       2.2,
       0.12,
       {0, -0.3, 0.6},
       0,
       "A",
       {{L::kUsl, 'F', 2.8}, {L::kTgt, 'F', 2.2}, {L::kLsl, 'F', 1.6}}},
      {"Diameter",
       "mm",
       7,
       3,
       24.994,
       0.005,
       {0, 0.2, 0.2},
       0,
       "ABC",
       {{L::kUsl, 'F', 25.03},
        {L::kUcl, 'F', 25.015},
        {L::kTgt, 'F', 25},
        {L::kLcl, 'F', 24.985},
        {L::kLsl, 'F', 24.97}}},
      {"Temperature",
       "\u00B0C",
       5,
       1,
       68.0,
       0.7,
       {0, 0.3, -0.6},
       1.0,
       "AC",
       {}},
      {"Pressure",
       "bar",
       5,
       2,
       4.0,
       0.08,
       {0, 0, 0.3},
       0,
       "A",
       {{L::kUsl, 'F', 4.4}, {L::kLsl, 'F', 3.6}}},
      {"Thickness", "mm", 6, 3, 0.35, 0.004, {0, 0.2, 0.1}, 0, "B", {}},
      {"Viscosity",
       "mPa\u00B7s",
       5,
       0,
       1450,
       25,
       {0, -0.2, 0.4},
       0.5,
       "",
       {{L::kUsl, 'B', 0}, {L::kLsl, 'B', 0}}},
      {"Speed", "bpm", 4, 0, 240, 4, {0, -0.5, -1.0}, 0, "", {}, 300, 0},
  };
  return kMeasurements;
}

const std::array<const char*, 3> kOperators = {"A. Meyer", "K. Okafor",
                                               "L. Novak"};
const std::array<const char*, 6> kRemarks = {
    "Sample retaken",        "New batch of caps",
    "Filler nozzle cleaned", "Checked by quality control",
    "Label roll changed",    "Product change-over, same format",
};

constexpr int kDiameter = 3;  // index in Measurements()
constexpr double kWearPerRecord = 0.00004;
constexpr double kMissingChance = 0.004;
constexpr double kRemarkChance = 0.015;
constexpr double kDriftKeep = 0.99;
constexpr double kDriftStep = 0.08;

std::vector<Rule> SampleRules() {
  return {
      {"A",
       "Beyond control limits",
       {{"One point beyond a control limit", "LIMIT", "BOTH", "X", "RED",
         "Stop and check the process"},
        {1, 1}}},
      {"B",
       "Seven on one side",
       {{"Seven points in a row on one side of the centre line", "RUN", "BOTH",
         "X", "YELLOW", "Look for a shift in the process"},
        {7, 7}}},
      {"C",
       "Trend of seven",
       {{"Seven points in a row rising or falling", "TREND", "BOTH", "X",
         "YELLOW", "Look for wear or drift"},
        {7, 7}}},
  };
}

void AddVariables(NewApplication& application) {
  const int rules = static_cast<int>(application.rules.size());
  auto& variables = application.variables;
  auto add = [&](std::string_view name, std::string_view type, int16_t length,
                 int16_t decimals) {
    variables.push_back(NewVariable(name, type, length, decimals,
                                    static_cast<int>(variables.size()) + 1,
                                    rules));
    return variables.back();
  };
  add("Date", "T", 10, 0);
  add("Time", "T", 8, 0);
  add("Line", "T", 10, 0);
  add("Operator", "T", 20, 0);
  for (const Measurement& measurement : Measurements()) {
    auto variable =
        add(measurement.name, "N", measurement.length, measurement.decimals);
    variable->Set(FieldAttribute::kUnits, Variant(measurement.units));
    variable->Set(FieldAttribute::kRules, Variant(measurement.rules));
    variable->Set(FieldAttribute::kMax, Variant(measurement.max));
    variable->Set(FieldAttribute::kMin, Variant(measurement.min));
    for (const LimitSetting& limit : measurement.limits) {
      if (limit.method == 'F') {
        SetFixedLimit(*variable, limit.kind, limit.value);
      } else {
        SetLimitMethod(*variable, limit.kind, std::string(1, limit.method));
      }
    }
  }
  add("Comments", "T", 60, 0);
}

// Shift 0 from 06:00, 1 from 14:00, 2 from 22:00 to 06:00.
int ShiftOf(double serial) {
  const int hour = Hour(serial);
  if (hour >= 6 && hour < 14) return 0;
  if (hour >= 14 && hour < 22) return 1;
  return 2;
}

double RoundTo(double value, int decimals) {
  const double scale = std::pow(10.0, decimals);
  return std::round(value * scale) / scale;
}

// The records at which the line has stood still before: about one stop
// per 700 records, none before the second record.
std::set<int32_t> PlanStops(SampleRandom& random, int32_t records) {
  std::set<int32_t> stops;
  if (records < 2) return stops;
  const int32_t count = 1 + records / 700;
  for (int32_t i = 0; i < count; ++i) {
    stops.insert(static_cast<int32_t>(random.UniformInt(1, records - 1)));
  }
  return stops;
}

class RecordMaker {
 public:
  RecordMaker(SampleRandom& random, int32_t records)
      : random_(random),
        stops_(PlanStops(random, records)),
        drift_(Measurements().size(), 0.0) {}

  std::vector<Variant> Make(int32_t index) {
    std::string remark;
    if (index > 0) {
      seconds_ += random_.UniformInt(300, 900);
      if (stops_.contains(index)) {
        seconds_ += random_.UniformInt(2 * 3600, 10 * 3600);
        remark = "Restart after a stop of the line; tool changed";
        ChangeTool();
      }
    }
    if (remark.empty() && ++since_tool_change_ > tool_life_) {
      remark = "Tool changed";
      ChangeTool();
    }
    const double serial = start_ + static_cast<double>(seconds_) / 86400.0;
    const int shift = ShiftOf(serial);
    std::vector<Variant> record;
    record.reserve(Measurements().size() + 5);
    record.emplace_back(FormatDate(serial));
    record.emplace_back(FormatTime(serial));
    record.emplace_back("Line 4");
    record.emplace_back(kOperators[shift]);
    for (size_t m = 0; m < Measurements().size(); ++m) {
      record.push_back(Measure(m, serial, shift));
    }
    if (remark.empty() && random_.Chance(kRemarkChance)) {
      remark = kRemarks[random_.UniformInt(0, kRemarks.size() - 1)];
    }
    record.push_back(remark.empty() ? Variant::Null() : Variant(remark));
    return record;
  }

 private:
  void ChangeTool() {
    since_tool_change_ = 0;
    tool_life_ = random_.UniformInt(250, 350);
  }

  Variant Measure(size_t m, double serial, int shift) {
    const Measurement& measurement = Measurements()[m];
    drift_[m] = kDriftKeep * drift_[m] + kDriftStep * random_.Normal();
    const double noise = random_.Normal();
    if (random_.Chance(kMissingChance)) return Variant::Null();
    const double day_fraction = serial - std::floor(serial);
    double sigmas =
        drift_[m] + measurement.shift_offset[shift] + noise +
        measurement.daily_swing * std::sin(2 * std::numbers::pi * day_fraction);
    double value = measurement.mean + measurement.sigma * sigmas;
    if (static_cast<int>(m) == kDiameter) {
      value += kWearPerRecord * since_tool_change_;
    }
    return Variant(RoundTo(value, measurement.decimals));
  }

  SampleRandom& random_;
  std::set<int32_t> stops_;
  std::vector<double> drift_;
  const double start_ = DateSerial(2026, 1, 5) + TimeSerial(6, 0, 0);
  int64_t seconds_ = 0;
  int64_t since_tool_change_ = 0;
  int64_t tool_life_ = 300;
};

}  // namespace

double SampleRandom::Uniform() {
  return static_cast<double>(engine_() >> 11) * 0x1.0p-53;
}

int64_t SampleRandom::UniformInt(int64_t low, int64_t high) {
  const uint64_t span = static_cast<uint64_t>(high - low) + 1;
  return low + static_cast<int64_t>(engine_() % span);
}

double SampleRandom::Normal() {
  if (has_spare_) {
    has_spare_ = false;
    return spare_;
  }
  const double u1 = 1.0 - Uniform();  // in (0, 1]: the logarithm is finite
  const double u2 = Uniform();
  const double radius = std::sqrt(-2.0 * std::log(u1));
  const double angle = 2.0 * std::numbers::pi * u2;
  spare_ = radius * std::sin(angle);
  has_spare_ = true;
  return radius * std::cos(angle);
}

NewApplication StreamSample(int32_t records, uint64_t seed) {
  NewApplication application;
  application.title = "Line 4 - filling and capping";
  application.default_look_back = 500;
  application.shift_hours = 8;
  application.shift_start = "06:00";
  application.secured_functions = "EXPORT";
  application.rules = SampleRules();
  AddVariables(application);
  // The records are made as the writer asks for them, in the same order
  // from the same random numbers as always.
  struct Maker {
    explicit Maker(uint64_t seed, int32_t records)
        : random(seed), maker(random, records), count(records) {}
    SampleRandom random;
    RecordMaker maker;
    int32_t count;
    int32_t next = 0;
  };
  auto state = std::make_shared<Maker>(seed, records);
  application.record_source = [state](std::vector<Variant>* record) {
    if (state->next >= state->count) return false;
    *record = state->maker.Make(state->next++);
    return true;
  };
  return application;
}

NewApplication GenerateSample(int32_t records, uint64_t seed) {
  NewApplication application = StreamSample(records, seed);
  application.records.reserve(static_cast<size_t>(records));
  std::vector<Variant> record;
  while (application.record_source(&record)) {
    application.records.push_back(record);
  }
  application.record_source = nullptr;
  return application;
}

}  // namespace rz
