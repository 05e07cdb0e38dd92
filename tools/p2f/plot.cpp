// vorda-p2f plot: pictures of the results.
#include "results.hpp"

#include "exchange/plot.hpp"

Show set_up_plot(CLI::App &app) {
    const auto of_case = add_case(app);
    const auto request = std::make_shared<PlotRequest>();
    app.add_option("-o,--output", request->folder, "folder for the pictures; made when it is not there")
        ->required();
    app.add_option_function<std::string>(
           "--format", [request](const std::string &word) { request->png = word == "png"; }, "svg or png")
        ->check(CLI::IsMember({"svg", "png"}))
        ->default_str("svg");
    const auto over = std::make_shared<std::string>();
    app.add_option("--over", *over,
                   "what is along the axis [period; frequency when the run has equal steps of it]")
        ->check(CLI::IsMember({"period", "frequency"}))
        ->default_str("");
    app.add_option("--heading", request->headings, "these headings alone, counted from 1 [all, 8 at most]")
        ->default_str("");
    return [=](const P2fFile &p2f) {
        DataSet data;
        std::string error;
        if (!form_results(*of_case, {.drift = true}, p2f, data, error))
            return refuse(error);
        request->over_frequency = over->empty() ? has_even_frequencies(data) : *over == "frequency";
        if (!write_plots(data, *request, error))
            return refuse(error);
        for (const std::string &name : request->written)
            std::printf("%s\n", name.c_str());
        for (const std::string &note : data.notes)
            std::printf("%s\n", note.c_str());
        return 0;
    };
}
