// The commands of the program. Each adds itself to the parser, and runs if the command line names it.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace tool {

// Returns the program's exit code. May throw UsageError, orlix::Error or std::exception; the caller reports them.
using Command = std::function<int()>;

Command AddMeasure(CLI::App& program);
Command AddParticles(CLI::App& program);
Command AddFlatten(CLI::App& program);
Command AddFilter(CLI::App& program);
Command AddPolygon(CLI::App& program);
Command AddRender(CLI::App& program);
Command AddInfo(CLI::App& program);
Command AddConvert(CLI::App& program);
Command AddSave(CLI::App& program);
Command AddLoad(CLI::App& program);
Command AddSpecimen(CLI::App& program);
Command AddDoctor(CLI::App& program);
Command AddManual(CLI::App& program);
Command AddCompletion(CLI::App& program);

}  // namespace tool
