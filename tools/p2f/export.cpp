// vorda-p2f export: the results as files of other programs.
#include "../support/arguments.hpp"
#include "results.hpp"

#include "exchange/export.hpp"

namespace {

std::string formats_text() {
    std::string text;
    for (const ExportFormat &format : export_formats())
        text += (text.empty() ? "" : "; ") + std::string(format.extension) + ": " + format.what;
    return text;
}

} // namespace

Show set_up_export(CLI::App &app) {
    const auto of_case = add_case(app);
    const auto request = std::make_shared<ExportRequest>();
    const auto animate = std::make_shared<std::vector<int>>();
    const auto amplitude = std::make_shared<double>(0);
    app.add_option("-o,--output", request->out, "file to write, by its extension. " + formats_text())
        ->required();
    app.add_option(
           "--period", request->periods,
           ".vtu: the values of these periods, counted from 1; several become a series [the first one "
           "with waves]")
        ->default_str("");
    app.add_option(
           "--animate", *animate,
           ".vtu: PERIOD HEADING, counted from 1: 24 phases of the moving bodies and the wave, as .pvd")
        ->expected(2)
        ->default_str("");
    app.add_option("--amplitude", *amplitude, "of the wave of --animate [a fiftieth of the wave length]")
        ->check(positive_number())
        ->default_str("");
    return [=, &app](const P2fFile &p2f) {
        std::string error;
        const ExportFormat *format = export_format_of(request->out, error);
        if (format == nullptr)
            return refuse(error);
        const bool panels = std::string(format->extension) == ".vtu";
        if (!panels && (!animate->empty() || !request->periods.empty()))
            return refuse("--period and --animate are for .vtu files: the others have all periods");
        if (!animate->empty())
            request->animation = AnimationOf{(*animate)[0], (*animate)[1], *amplitude};
        DataSet data;
        const std::string input = app.get_option("file")->as<std::string>();
        data.provenance =
            provenance_of("VORDA " VORDA_VERSION, input,
                          "vorda-p2f export " + input + case_text(*of_case) + " -o " + request->out);
        if (!form_results(*of_case, format->wants, p2f, data, error) || !format->write(data, *request, error))
            return refuse(error);
        for (const std::string &name : request->written)
            std::printf("%s\n", name.c_str());
        for (const auto *notes : {&request->notes, &data.notes})
            for (const std::string &note : *notes)
                std::printf("%s\n", note.c_str());
        return 0;
    };
}
