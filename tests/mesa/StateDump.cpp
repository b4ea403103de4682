#include "StateDump.h"

#include <GLES3/gl32.h>

#include <array>
#include <sstream>
#include <vector>

namespace {

/** Names of the header with their texts. */
class List {
public:
    List(std::initializer_list<GLenum> names, const char* text) {
        std::istringstream texts(text);
        for (const GLenum name : names) {
            std::string each;
            std::getline(texts >> std::ws, each, ',');
            mNames.push_back({name, each});
        }
    }
    struct Name {
        GLenum value;
        std::string text;
    };
    auto begin() const { return mNames.begin(); }
    auto end() const { return mNames.end(); }

private:
    std::vector<Name> mNames;
};
#define LIST(...) List({__VA_ARGS__}, #__VA_ARGS__)

const List kIntegers = LIST(
    GL_ACTIVE_TEXTURE, GL_CURRENT_PROGRAM, GL_PROGRAM_PIPELINE_BINDING, GL_DRAW_FRAMEBUFFER_BINDING,
    GL_READ_FRAMEBUFFER_BINDING, GL_RENDERBUFFER_BINDING, GL_VERTEX_ARRAY_BINDING, GL_ARRAY_BUFFER_BINDING,
    GL_ELEMENT_ARRAY_BUFFER_BINDING, GL_PIXEL_PACK_BUFFER_BINDING, GL_PIXEL_UNPACK_BUFFER_BINDING,
    GL_COPY_READ_BUFFER_BINDING, GL_COPY_WRITE_BUFFER_BINDING, GL_UNIFORM_BUFFER_BINDING,
    GL_SHADER_STORAGE_BUFFER_BINDING, GL_ATOMIC_COUNTER_BUFFER_BINDING, GL_DRAW_INDIRECT_BUFFER_BINDING,
    GL_DISPATCH_INDIRECT_BUFFER_BINDING, GL_TEXTURE_BUFFER_BINDING, GL_TRANSFORM_FEEDBACK_BINDING,
    GL_TRANSFORM_FEEDBACK_BUFFER_BINDING, GL_TRANSFORM_FEEDBACK_ACTIVE, GL_TRANSFORM_FEEDBACK_PAUSED,
    GL_UNPACK_ALIGNMENT, GL_UNPACK_ROW_LENGTH, GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS,
    GL_UNPACK_SKIP_IMAGES, GL_PACK_ALIGNMENT, GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS, GL_VIEWPORT,
    GL_SCISSOR_BOX, GL_COLOR_WRITEMASK, GL_DEPTH_WRITEMASK, GL_DEPTH_FUNC, GL_STENCIL_FUNC, GL_STENCIL_REF,
    GL_STENCIL_VALUE_MASK, GL_STENCIL_WRITEMASK, GL_STENCIL_FAIL, GL_STENCIL_PASS_DEPTH_FAIL,
    GL_STENCIL_PASS_DEPTH_PASS, GL_STENCIL_BACK_FUNC, GL_STENCIL_BACK_REF, GL_STENCIL_BACK_VALUE_MASK,
    GL_STENCIL_BACK_WRITEMASK, GL_STENCIL_BACK_FAIL, GL_STENCIL_BACK_PASS_DEPTH_FAIL, GL_STENCIL_BACK_PASS_DEPTH_PASS,
    GL_STENCIL_CLEAR_VALUE, GL_CULL_FACE_MODE, GL_FRONT_FACE, GL_SAMPLE_COVERAGE_INVERT, GL_PATCH_VERTICES,
    GL_READ_BUFFER, GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA, GL_BLEND_EQUATION_RGB,
    GL_BLEND_EQUATION_ALPHA, GL_GENERATE_MIPMAP_HINT, GL_FRAGMENT_SHADER_DERIVATIVE_HINT);

const List kFloats = LIST(GL_BLEND_COLOR, GL_COLOR_CLEAR_VALUE, GL_DEPTH_RANGE, GL_DEPTH_CLEAR_VALUE, GL_LINE_WIDTH,
                          GL_POLYGON_OFFSET_FACTOR, GL_POLYGON_OFFSET_UNITS, GL_SAMPLE_COVERAGE_VALUE,
                          GL_MIN_SAMPLE_SHADING_VALUE, GL_PRIMITIVE_BOUNDING_BOX);

const List kCaps =
    LIST(GL_BLEND, GL_CULL_FACE, GL_DEPTH_TEST, GL_DITHER, GL_POLYGON_OFFSET_FILL, GL_PRIMITIVE_RESTART_FIXED_INDEX,
         GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_RASTERIZER_DISCARD, GL_SAMPLE_COVERAGE, GL_SAMPLE_MASK,
         GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_SHADING, GL_DEBUG_OUTPUT, GL_DEBUG_OUTPUT_SYNCHRONOUS);

const List kQueries = LIST(GL_ANY_SAMPLES_PASSED, GL_ANY_SAMPLES_PASSED_CONSERVATIVE,
                           GL_TRANSFORM_FEEDBACK_PRIMITIVES_WRITTEN, GL_PRIMITIVES_GENERATED);

const List kUnitBindings =
    LIST(GL_TEXTURE_BINDING_2D, GL_TEXTURE_BINDING_3D, GL_TEXTURE_BINDING_2D_ARRAY, GL_TEXTURE_BINDING_CUBE_MAP,
         GL_TEXTURE_BINDING_CUBE_MAP_ARRAY, GL_TEXTURE_BINDING_2D_MULTISAMPLE, GL_TEXTURE_BINDING_2D_MULTISAMPLE_ARRAY,
         GL_TEXTURE_BINDING_BUFFER, GL_SAMPLER_BINDING);

const List kTextureParameters =
    LIST(GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER, GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R,
         GL_TEXTURE_SWIZZLE_R, GL_TEXTURE_SWIZZLE_G, GL_TEXTURE_SWIZZLE_B, GL_TEXTURE_SWIZZLE_A, GL_TEXTURE_BASE_LEVEL,
         GL_TEXTURE_MAX_LEVEL);

const List kAttributes =
    LIST(GL_VERTEX_ATTRIB_ARRAY_ENABLED, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING, GL_VERTEX_ATTRIB_ARRAY_SIZE,
         GL_VERTEX_ATTRIB_ARRAY_STRIDE, GL_VERTEX_ATTRIB_ARRAY_TYPE, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED,
         GL_VERTEX_ATTRIB_ARRAY_INTEGER, GL_VERTEX_ATTRIB_ARRAY_DIVISOR, GL_VERTEX_ATTRIB_BINDING,
         GL_VERTEX_ATTRIB_RELATIVE_OFFSET);

/** What there is many of, by what tells how many. */
const std::pair<GLenum, List> kIndexed[] = {
    {GL_MAX_UNIFORM_BUFFER_BINDINGS, LIST(GL_UNIFORM_BUFFER_BINDING, GL_UNIFORM_BUFFER_START, GL_UNIFORM_BUFFER_SIZE)},
    {GL_MAX_SHADER_STORAGE_BUFFER_BINDINGS, LIST(GL_SHADER_STORAGE_BUFFER_BINDING, GL_SHADER_STORAGE_BUFFER_START)},
    {GL_MAX_ATOMIC_COUNTER_BUFFER_BINDINGS, LIST(GL_ATOMIC_COUNTER_BUFFER_BINDING)},
    {GL_MAX_TRANSFORM_FEEDBACK_SEPARATE_ATTRIBS, LIST(GL_TRANSFORM_FEEDBACK_BUFFER_BINDING)},
    {GL_MAX_IMAGE_UNITS, LIST(GL_IMAGE_BINDING_NAME, GL_IMAGE_BINDING_LEVEL, GL_IMAGE_BINDING_LAYERED,
                              GL_IMAGE_BINDING_LAYER, GL_IMAGE_BINDING_ACCESS, GL_IMAGE_BINDING_FORMAT)},
    {GL_MAX_DRAW_BUFFERS, LIST(GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA,
                               GL_BLEND_EQUATION_RGB, GL_BLEND_EQUATION_ALPHA, GL_COLOR_WRITEMASK)},
    {GL_MAX_SAMPLE_MASK_WORDS, LIST(GL_SAMPLE_MASK_VALUE)},
    {GL_MAX_VERTEX_ATTRIB_BINDINGS,
     LIST(GL_VERTEX_BINDING_OFFSET, GL_VERTEX_BINDING_STRIDE, GL_VERTEX_BINDING_DIVISOR, GL_VERTEX_BINDING_BUFFER)},
};

/** One answer of the driver, as text; eight numbers at most, zeros where there are fewer. */
template <typename T, typename Ask>
std::string answer(Ask ask) {
    std::array<T, 8> values{};
    ask(values.data());
    std::string text;
    for (const T value : values) {
        text += std::to_string(value) + " ";
    }
    return text;
}

GLuint count(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return static_cast<GLuint>(value);
}

std::string at(const std::string& name, GLuint index) { return name + "[" + std::to_string(index) + "]"; }

std::string errors() {
    std::string text;
    for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError()) {
        text += std::to_string(error) + " ";
    }
    return text;
}

} // namespace

StateDump StateDump::take() {
    StateDump dump;
    auto& values = dump.mValues;
    values["errors"] = errors();
    for (const auto& [name, text] : kIntegers) {
        values[text] = answer<GLint>([name = name](GLint* into) { glGetIntegerv(name, into); });
    }
    for (const auto& [name, text] : kFloats) {
        values[text] = answer<GLfloat>([name = name](GLfloat* into) { glGetFloatv(name, into); });
    }
    for (const auto& [name, text] : kCaps) {
        values[text] = std::to_string(glIsEnabled(name));
    }
    for (const auto& [name, text] : kQueries) {
        values[text] = answer<GLint>([name = name](GLint* into) { glGetQueryiv(name, GL_CURRENT_QUERY, into); });
    }
    for (GLuint i = 0; i < count(GL_MAX_DRAW_BUFFERS); ++i) {
        values[at("GL_DRAW_BUFFER", i)] = std::to_string(count(GL_DRAW_BUFFER0 + i));
        values[at("GL_BLEND", i)] = std::to_string(glIsEnabledi(GL_BLEND, i));
    }
    for (const auto& [length, list] : kIndexed) {
        for (GLuint i = 0; i < count(length); ++i) {
            for (const auto& [name, text] : list) {
                values[at(text, i)] =
                    answer<GLint64>([name = name, i](GLint64* into) { glGetInteger64i_v(name, i, into); });
            }
        }
    }
    for (GLuint i = 0; i < count(GL_MAX_VERTEX_ATTRIBS); ++i) {
        for (const auto& [name, text] : kAttributes) {
            values[at(text, i)] = answer<GLint>([name = name, i](GLint* into) { glGetVertexAttribiv(i, name, into); });
        }
        values[at("GL_CURRENT_VERTEX_ATTRIB", i)] =
            answer<GLfloat>([i](GLfloat* into) { glGetVertexAttribfv(i, GL_CURRENT_VERTEX_ATTRIB, into); });
    }
    const GLenum active = count(GL_ACTIVE_TEXTURE);
    for (GLuint unit = 0; unit < count(GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS); ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        for (const auto& [name, text] : kUnitBindings) {
            values[at(text, unit)] = std::to_string(count(name));
        }
        if (count(GL_TEXTURE_BINDING_2D) == 0) {
            continue;
        }
        for (const auto& [name, text] : kTextureParameters) {
            values[at(text, unit)] =
                answer<GLint>([name = name](GLint* into) { glGetTexParameteriv(GL_TEXTURE_2D, name, into); });
        }
    }
    glActiveTexture(active);
    values["the dump itself"] = errors(); // it asks for something that is not there
    return dump;
}

std::string StateDump::differenceTo(const StateDump& before) const {
    std::string lines;
    for (const auto& [name, value] :
         mValues) { // a texture's parameters come and go with its binding, which differs then
        if (const auto old = before.mValues.find(name); old != before.mValues.end() && old->second != value) {
            lines += name + ": " + old->second + " -> " + value + "\n";
        }
    }
    return lines;
}

std::string StateDump::text() const {
    std::string lines;
    for (const auto& [name, value] : mValues) {
        lines += name + ": " + value + "\n";
    }
    return lines;
}
