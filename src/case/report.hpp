// The report of a case: one HTML file that needs nothing else.
#pragma once

#include "case/outputs.hpp"
#include "exchange/dataset.hpp"

struct ReportOf {
    const RunCase *run;
    const CaseFindings *findings;
    const DataSet *data;
    const DataSet *fine = nullptr; // by the finer meshes, if there are any
};
// Writes report.html in the run's folder. False with the reason in `error`; then it is not there.
[[nodiscard]] bool write_report(const ReportOf &of, std::string &error);
