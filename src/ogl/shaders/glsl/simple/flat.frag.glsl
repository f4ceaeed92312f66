void main() { gl_FragColor = v_color; }
