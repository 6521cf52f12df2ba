#version 440
// The sky: a flat colour with a band of soft, slowly churning clouds along
// the bottom whose upper edge rises and falls like a skyline. Light and dark
// are blended by `theme` (0 light, 1 dark). Drawn at about a third of the
// view's size and scaled up, so every constant below is tuned for that.

layout(location = 0) in vec2 qt_TexCoord0;
layout(location = 0) out vec4 fragColor;

layout(std140, binding = 0) uniform buf {
    mat4 qt_Matrix;
    float qt_Opacity;
    vec2 res;     // the drawable's size in pixels
    float time;   // seconds of animation
    float theme;  // 0 light, 1 dark, in between while blending
    vec4 skyL;    // the light sky
    vec4 cloudL;  // the light clouds' cores
    vec4 skyD;    // the dark sky (dark clouds are this, lifted)
};

const float PI = 3.14159265359;
const float TAU = 6.28318530718;
const vec3 RIM_L = vec3(1.0, 1.0, 1.0);
const vec3 RIM_LIFT = vec3(0.095, 0.099, 0.112);
const vec3 CORE_LIFT = vec3(0.040, 0.039, 0.042);
const float SCALE = 8.0;
const float BASE_DENSITY = 0.55;
const float COVERAGE = 0.45;
const float FADE_START = 0.5;
const float CEILING = 0.9;
const float SKYLINE_DIP = 0.1;
const float SKYLINE_RISE = 0.5;
const float OPACITY_L = 0.9;
const float OPACITY_D = 0.6;
const float WARP = 0.025;
// Rotation-scale matrices, column by column.
const mat2 SPIN_A = mat2(0.80, 0.60, -0.60, 0.80);
const mat2 SPIN_B = mat2(1.60, 1.20, -1.20, 1.60);
const vec3 PUFF_RATE = vec3(0.1, 0.2, 0.5);
const vec3 PUFF_ZOOM = vec3(2.02, 2.03, 2.01);
const vec3 FLOW_RATE_A = vec3(0.1, 0.4, 0.7);
const vec2 FLOW_RATE_B = vec2(0.3, 0.3);
// The last gain is 0.0325 on purpose, not half of 0.0625: the look was
// tuned with it.
const vec3 FLOW_GAIN_A = vec3(0.5, 0.25, 0.125);
const vec2 FLOW_GAIN_B = vec2(0.0625, 0.0325);

// (No arrays, no integer bit operations: the program is also translated for
// the oldest OpenGL and OpenGL ES that Qt draws with.)

// A modulo that floors, so cells below zero keep the checkerboard (GLSL's
// mod floors too; spelled out because the noise depends on it).
float gmod(float x, float y)
{
    return x - y * floor(x / y);
}

// A pseudo-random vector in [-1, 1]^2 for a cell.
vec2 hash22(vec2 p)
{
    vec3 q = fract(vec3(p.x, p.y, p.x) * vec3(0.1031, 0.1030, 0.0973));
    q += dot(q, q.yzx + 33.33);
    return fract(vec2(q.x + q.y, q.x + q.z) * vec2(q.z, q.y)) * 2.0 - 1.0;
}

mat2 rot(float a)
{
    float c = cos(a);
    float s = sin(a);
    return mat2(c, s, -s, c);
}

// A soft Worley noise: the smooth minimum of the distances to the feature
// points of the 3x3 cells around, which orbit as the phase grows.
float cellular(vec2 x, float phase)
{
    vec2 n = floor(x);
    vec2 f = x - n;
    float sum = 0.0;
    for (int j = -1; j <= 1; ++j) {
        for (int i = -1; i <= 1; ++i) {
            vec2 g = vec2(float(i), float(j));
            vec2 point = g + 0.5 + 0.5 * sin(phase + TAU * hash22(n + g));
            vec2 r = point - f;
            float d2 = dot(r, r);
            float d4 = d2 * d2;
            float d8 = d4 * d4;
            sum += 1.0 / (d8 * d8);
        }
    }
    return 1.0 - pow(sum, -1.0 / 8.0);
}

// A gradient noise whose gradients turn by `ang`, neighbouring cells in
// opposite senses.
float corner(vec2 cell, vec2 f, mat2 r, vec2 o)
{
    float sgn = 1.0 - 2.0 * gmod(o.x + o.y, 2.0);
    return sgn * dot(hash22(cell + o), r * (f - o));
}

float curl(vec2 p, float ang)
{
    vec2 cell = floor(p);
    vec2 f = p - cell;
    mat2 r = rot(ang + PI * (1.0 - gmod(cell.x + cell.y, 2.0)));
    vec2 w = f * f * (3.0 - 2.0 * f);
    float a = corner(cell, f, r, vec2(0.0, 0.0));
    float b = corner(cell, f, r, vec2(1.0, 0.0));
    float c = corner(cell, f, r, vec2(0.0, 1.0));
    float d = corner(cell, f, r, vec2(1.0, 1.0));
    return 0.5 + mix(mix(a, b, w.x), mix(c, d, w.x), w.y);
}

float puffField(vec2 p, float t)
{
    float sum = 0.5 * cellular(p, t * PUFF_RATE.x);
    p = SPIN_A * p * PUFF_ZOOM.x;
    sum += 0.25 * cellular(p, t * PUFF_RATE.y);
    p = SPIN_A * p * PUFF_ZOOM.y;
    sum += 0.125 * cellular(p, t * PUFF_RATE.z);
    return (sum + 0.0625) / 0.9375;
}

float flowWarp(vec2 p, float t)
{
    float sum = FLOW_GAIN_A.x * curl(p, t * FLOW_RATE_A.x);
    p = SPIN_B * p;
    sum += FLOW_GAIN_A.y * curl(p, t * FLOW_RATE_A.y);
    return sum * 1.2;
}

float flowField(vec2 p, float t)
{
    float sum = FLOW_GAIN_A.x * curl(p, t * FLOW_RATE_A.x);
    p = SPIN_B * p;
    sum += FLOW_GAIN_A.y * curl(p, t * FLOW_RATE_A.y);
    p = SPIN_B * p;
    sum += FLOW_GAIN_A.z * curl(p, t * FLOW_RATE_A.z);
    p = SPIN_B * p;
    sum += FLOW_GAIN_B.x * curl(p, t * FLOW_RATE_B.x);
    p = SPIN_B * p;
    sum += FLOW_GAIN_B.y * curl(p, t * FLOW_RATE_B.y);
    return sum * 1.2;
}

void main()
{
    // Pixels from the bottom left, whatever way up the target is.
    vec2 px = vec2(qt_TexCoord0.x, 1.0 - qt_TexCoord0.y) * res;
    float h = px.y / res.y;
    vec3 sky = mix(skyL.rgb, skyD.rgb, theme);

    // The skyline: where the cloud band ends, rising into towers.
    float sx = px.x / res.y;
    float ridge = curl(vec2(sx * 0.6 + time * 0.01, 4.7), 0.0);
    ridge = 0.7 * ridge + 0.3 * curl(vec2(sx * 1.5 - time * 0.006, 8.3), 0.0);
    ridge = 0.5 + (ridge - 0.5) * 2.0;
    float tower = smoothstep(0.4, 0.85, ridge);
    float lift = mix(-SKYLINE_DIP, SKYLINE_RISE, tower);
    if (h > CEILING + lift) {
        fragColor = vec4(sky, 1.0) * qt_Opacity;
        return;
    }

    float churn = time * 0.5;
    float drift = time * 0.15;
    float unit = max(res.x, res.y);
    vec2 uv = vec2(px.x, -px.y) / unit;
    uv += flowWarp(uv * SCALE + vec2(0.0, churn * 0.5), churn) * WARP;

    vec2 q = uv * SCALE + vec2(0.0, drift);
    float shape = puffField(q, churn * 10.0);
    float detail = flowField(q, churn * 10.0);

    float band = COVERAGE * clamp(1.0 - h + lift * 0.9, 0.0, 1.0);
    shape = smoothstep(0.0, 1.0, shape) * band + BASE_DENSITY;
    detail = smoothstep(0.0, 1.0, detail) * band + BASE_DENSITY;
    float dens = shape * detail;
    dens *= smoothstep(0.0, 1.0, dens);

    // Dark clouds are the dark sky lifted, the rims more than the cores.
    vec3 rim = mix(RIM_L, skyD.rgb + RIM_LIFT, theme);
    vec3 core = mix(cloudL.rgb, skyD.rgb + CORE_LIFT, theme);
    vec3 cloud = mix(rim, core, smoothstep(0.5, 0.99, dens));

    float cover = smoothstep(0.2, 0.5, dens);
    float fade = 1.0 - smoothstep(FADE_START + lift, CEILING + lift, h);
    float opacity = mix(OPACITY_L, OPACITY_D, theme);
    fragColor = vec4(mix(sky, cloud, cover * fade * opacity), 1.0) * qt_Opacity;
}
