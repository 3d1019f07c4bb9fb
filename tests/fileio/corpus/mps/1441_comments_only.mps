* nothing

