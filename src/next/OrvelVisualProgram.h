// A program that we draw with ourselves.
#pragma once

#include "next/OrvelProgramReflector.h"

#include <string>

namespace android::orvel::next {

/** Used on the thread of the context that it was made in. One that cannot be made is not valid: it is never used. */
class OrvelVisualProgram : public OrvelProgramReflector {
public:
    OrvelVisualProgram() = default;
    ~OrvelVisualProgram();
    OrvelVisualProgram(const OrvelVisualProgram&) = delete;
    OrvelVisualProgram& operator=(const OrvelVisualProgram&) = delete;

    // Each replaces the program there was, also when it fails; a failure is one word in the debug log: "vcf" and "fcf"
    // for a shader that does not compile, "pcf" for a program that does not link, "bpcf" for a binary that is refused.
    void CreateFromShaderSource(const std::string& vertexSource, const std::string& fragmentSource);
    /** @param length bytes @return whether the driver took it */
    bool CreateFromBinarySource(void* binary, GLenum binaryFormat, GLsizei length);

    // Reserved: they do nothing.
    void CreateFromShaderFile(const char* /*vertexFile*/, const char* /*fragmentFile*/) {}
    void CreateFromBinaryFile(const char* /*file*/) {}

    bool IsValid() const { return mValid; }
    GLuint GetProgram() const { return mProgram; }
    /** @return -1 for an unknown name, and for every name while the program is not valid */
    GLint GetUniformLocation(const std::string& name) const;
    void Use() const;
    /** Uses no program. */
    void UnUse() const;
    /** Forgets the name without deleting it: its context is not current, or gone. */
    void Abandon();

private:
    void Delete();

    GLuint mProgram = 0;
    bool mValid = false;
};

} // namespace android::orvel::next
