#include <dlfcn.h>

#include <cassert>
#include <cstdio>
#include <memory>

#include "host/sdk/panel_controls.h"
#include "host/sdk/panel_pages.h"
#include "host/sdk/prs_control.h"
#include "host/sdk/standin.h"
#include "host/sdk/texture_maps.h"

namespace tavrik_host {

/// A library and what it exports.
class LoadedLibrary {
 public:
    std::filesystem::path file;
    void* image = nullptr;
    const MCHAR* (*description)() = nullptr;
    int (*numberClasses)() = nullptr;
    ClassDesc* (*classDesc)(int) = nullptr;
    ULONG (*version)() = nullptr;
    int (*initialize)() = nullptr;
    int (*shutdown)() = nullptr;
    const LibraryResources* resources = nullptr;  // null: it keeps them to itself
    bool ready = false;                           // initialised, and not shut down again
};

namespace {

class TriObjectDesc final : public ClassDesc {
 public:
    int IsPublic() override { return 0; }
    void* Create(BOOL) override { return CreateNewTriObject(); }
    const MCHAR* ClassName() override { return L"Editable Mesh"; }
    SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
    Class_ID ClassID() override { return triObjectClassID; }
    const MCHAR* Category() override { return L""; }
};

/// What is known of classes. Never destroyed, as the libraries that they come from stay mapped.
struct Registry {
    std::vector<std::unique_ptr<LoadedLibrary>> libraries;
    std::vector<ClassDesc*> classes;
    ClassDesc* defaultController = &PrsControlClass();

    Registry() { OwnClasses(); }
    void OwnClasses() {
        static TriObjectDesc triObject;
        classes = {&PrsControlClass(), &triObject, &BitmapMapClass(), &CheckerMapClass()};
        defaultController = &PrsControlClass();
    }
};

Registry& TheRegistry() {
    static auto* const registry = new Registry;
    return *registry;
}

template <typename Function>
bool FindFunction(const LoadedLibrary& library, const char* name, Function*& function, std::string& problem) {
    function = reinterpret_cast<Function*>(dlsym(library.image, name));
    if (function == nullptr) problem = library.file.string() + " is no plug-in: it doesn't export " + name + ".";
    return function != nullptr;
}

bool FindFunctions(LoadedLibrary& library, std::string& problem) {
    return FindFunction(library, "LibDescription", library.description, problem) &&
           FindFunction(library, "LibNumberClasses", library.numberClasses, problem) &&
           FindFunction(library, "LibClassDesc", library.classDesc, problem) &&
           FindFunction(library, "LibVersion", library.version, problem) &&
           FindFunction(library, "LibInitialize", library.initialize, problem) &&
           FindFunction(library, "LibShutdown", library.shutdown, problem);
}

/// A library need not tell of its resources.
void TakeResources(LoadedLibrary& library) {
    auto* const call = reinterpret_cast<LibResourcesCall*>(dlsym(library.image, "LibResources"));
    if (call != nullptr) library.resources = call(&library);
}

bool CheckVersion(const LoadedLibrary& library, std::string& problem) {
    const ULONG version = library.version();
    if (version == VERSION_3DSMAX) return true;
    char text[80];
    std::snprintf(text, sizeof text, " is built for host version 0x%08X, but this one is 0x%08X.", version, VERSION_3DSMAX);
    problem = library.file.string() + text;
    return false;
}

/// The classes that it offers. None may be missing or stand in another's place.
bool TakeClasses(const LoadedLibrary& library, std::vector<ClassDesc*>& classes, std::string& problem) {
    const int count = library.numberClasses();
    for (int i = 0; i < count; ++i) {
        ClassDesc* const desc = library.classDesc(i);
        if (desc == nullptr) {
            problem = library.file.string() + " announces " + std::to_string(count) + " classes, but has no class " +
                      std::to_string(i) + ".";
            return false;
        }
        for (ClassDesc* other : classes) {
            if (other->SuperClassID() != desc->SuperClassID() || other->ClassID() != desc->ClassID()) continue;
            problem = library.file.string() + " gives its class " + std::to_string(i) + " the identity of another class.";
            return false;
        }
        classes.push_back(desc);
    }
    return true;
}

LoadedLibrary* FindLibrary(void* image) {
    for (const auto& library : TheRegistry().libraries) {
        if (library->image == image) return library.get();
    }
    return nullptr;
}

/// Starts a library whose functions are found.
bool Start(LoadedLibrary& library, std::string& problem) {
    if (library.initialize() == 0) {
        problem = library.file.string() + " could not initialise itself.";
        return false;
    }
    std::vector<ClassDesc*> classes = TheRegistry().classes;
    if (!TakeClasses(library, classes, problem)) {
        library.shutdown();
        return false;
    }
    TheRegistry().classes = std::move(classes);
    library.ready = true;
    return true;
}

}  // namespace

bool LoadPlugin(const std::filesystem::path& file, std::string& problem) {
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) {
        problem = file.string() + ": there is no such plug-in.";
        return false;
    }
    // The system searches elsewhere for a name without a folder.
    void* const image = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (image == nullptr) {
        problem = file.string() + " can't be loaded: " + dlerror() + ".";
        return false;
    }
    if (LoadedLibrary* const known = FindLibrary(image)) {
        dlclose(image);  // only counts down
        return known->ready || Start(*known, problem);
    }
    auto library = std::make_unique<LoadedLibrary>();
    library->file = file;
    library->image = image;
    if (!FindFunctions(*library, problem) || !CheckVersion(*library, problem)) {
        dlclose(image);
        return false;
    }
    TakeResources(*library);
    // From here on it stays: whatever it did while it started may still point into it.
    LoadedLibrary& kept = *TheRegistry().libraries.emplace_back(std::move(library));
    return Start(kept, problem);
}

void ShutDownPlugins() {
    assert(AllNodes().empty());
    Registry& registry = TheRegistry();
    for (auto library = registry.libraries.rbegin(); library != registry.libraries.rend(); ++library) {
        if ((*library)->ready) (*library)->shutdown();
        (*library)->ready = false;
    }
    registry.OwnClasses();
}

const MCHAR* FindResourceString(HINSTANCE library, int id) {
    return library == nullptr || library->resources == nullptr ? nullptr : library->resources->FindString(id);
}

const DialogTemplate* FindResourceDialog(HINSTANCE library, int number) {
    return library == nullptr || library->resources == nullptr ? nullptr : library->resources->FindDialog(number);
}

const DialogTemplate* FindDialogTemplate(int number) {
    for (const auto& library : TheRegistry().libraries) {
        if (const DialogTemplate* const found = FindResourceDialog(library.get(), number)) return found;
    }
    return nullptr;
}

const std::vector<ClassDesc*>& Classes() { return TheRegistry().classes; }

ClassDesc* FindClass(SClass_ID superClass, Class_ID id) {
    for (ClassDesc* desc : Classes()) {
        if (desc->SuperClassID() == superClass && desc->ClassID() == id) return desc;
    }
    return nullptr;
}

ClassDesc* FindClass(SClass_ID superClass, const std::wstring& className) {
    for (ClassDesc* desc : Classes()) {
        if (desc->SuperClassID() == superClass && desc->ClassName() == className) return desc;
    }
    return nullptr;
}

/// An identity that no class has stands for the host's own, too.
void SetDefaultController(Class_ID id) {
    ClassDesc* const desc = FindClass(CTRL_MATRIX3_CLASS_ID, id);
    TheRegistry().defaultController = desc == nullptr ? &PrsControlClass() : desc;
}

}  // namespace tavrik_host

ClassDesc* GetDefaultController(SClass_ID sclass) {
    return sclass == CTRL_MATRIX3_CLASS_ID ? tavrik_host::TheRegistry().defaultController : nullptr;
}

Control* NewDefaultMatrix3Controller() {
    return static_cast<Control*>(GetDefaultController(CTRL_MATRIX3_CLASS_ID)->Create(FALSE));
}
