#include "host/engine/script_engine.h"

#include "host/engine/runtime.h"

namespace orvo::script {

ScriptError::ScriptError(Trouble trouble, Place place, std::string message)
    : trouble(trouble), place(std::move(place)), message(std::move(message)) {
    if (!this->place.file.empty()) what_ = this->place.file;
    if (this->place.line > 0)
        what_ += (what_.empty() ? "line " : ", line ") + std::to_string(this->place.line);
    what_ += (what_.empty() ? "" : ": ") + this->message;
}

Engine::Engine(EngineOptions options) : runtime_(std::make_unique<Runtime>(std::move(options))) {}
Engine::~Engine() = default;

void Engine::set_global(const std::string& name, const Variant& value) {
    runtime_->set_global(name, value);
}
void Engine::set_function(const std::string& name, HostFunction function) {
    runtime_->set_function(name, std::move(function));
}
void Engine::set_time_limit(std::chrono::milliseconds limit) { runtime_->set_time_limit(limit); }
void Engine::clear_time_limit() { runtime_->clear_time_limit(); }
Ending Engine::run(const Program& program) { return runtime_->run(program.content_); }
void Engine::stop() { runtime_->stop(); }

}  // namespace orvo::script
